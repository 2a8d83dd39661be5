// Posting payloads, the named mutexes, the open conversation.
#include <gtest/gtest.h>

#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/named_mutexes.h"
#include "service/posting.h"

namespace {

struct Counted {
  explicit Counted(int* destroyed) : destroyed_(destroyed) {}
  ~Counted() { ++*destroyed_; }
  int* destroyed_;
};

TEST(Posting, FailedPostFreesAndTracesAPostedPayloadBelongsToTheReceiver) {
  platform::ScopedTraceCapture traces;
  int destroyed = 0;
  platform::QueuedWindow window;
  ASSERT_TRUE(service::PostOwned(window.handle(), 3196, std::make_unique<Counted>(&destroyed)));
  EXPECT_EQ(destroyed, 0);
  service::AdoptPayload<Counted>(window.Take()->wParam).reset();
  EXPECT_EQ(destroyed, 1);

  window.Destroy();
  EXPECT_FALSE(service::PostOwned(window.handle(), 3196, std::make_unique<Counted>(&destroyed)));
  EXPECT_FALSE(service::PostOwnedPair(window.handle(), 3193, std::make_unique<Counted>(&destroyed),
                                      std::make_unique<Counted>(&destroyed)));
  EXPECT_EQ(destroyed, 4);
  EXPECT_EQ(traces.Count("PostMessage 3196 failed"), 1u);
  EXPECT_EQ(traces.Count("PostMessage 3193 failed"), 1u);
}

TEST(ModuleMutexes, TwentyAreCreatedOnceAndOnlyRencentConvDataIsLocked) {
  service::CreateModuleMutexes();
  service::CreateModuleMutexes();
  const std::vector<platform::NamedMutex*>& handles = service::ModuleMutexes();
  const std::vector<std::string_view>& names = service::ModuleMutexNames();
  ASSERT_EQ(handles.size(), 20u);
  EXPECT_EQ(names[5], "RencentConvData");
  EXPECT_NE(handles[6], handles[7]);  // "NewMsgmap" twice: two objects

  CChatTools tools;
  tools.AddRecentConvID(u"a", 1);
  tools.DeleteConv(u"a");
  tools.AddRecentConvID(u"b", 1);
  (void)tools.TakeRecentConv(u"b");
  tools.DealConvListFunc("[]");
  for (size_t i = 0; i < handles.size(); ++i) {
    EXPECT_EQ(handles[i]->WaitCount(), i == 5 ? 2u : 0u) << names[i];
  }
}

TEST(CurrentConversation, StartsAsErrorAndComparesExactly) {
  service::ForgetCurrentConversation();
  EXPECT_EQ(service::CurrentConvId(), u"error");
  EXPECT_FALSE(service::IsCurrentConversation(u""));
  service::SetCurrentConversation(u"10002", 1);
  EXPECT_TRUE(service::IsCurrentConversation(u"10002"));
  EXPECT_FALSE(service::IsCurrentConversation(u"10002 "));
  service::ForgetCurrentConversation();
  EXPECT_EQ(service::CurrentConvId(), u"error");
}

}  // namespace
