// Posting payloads, the event record, the named mutexes, the open conversation.
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

TEST(Posting, AFailedPostFreesThePayloadAndSaysSo) {
  platform::ScopedTraceCapture traces;
  int destroyed = 0;
  platform::QueuedWindow window;
  window.Destroy();
  EXPECT_FALSE(service::PostOwned(window.handle(), 3196, std::make_unique<Counted>(&destroyed)));
  EXPECT_EQ(destroyed, 1);
  EXPECT_FALSE(service::PostOwnedPair(window.handle(), 3193, std::make_unique<Counted>(&destroyed),
                                      std::make_unique<Counted>(&destroyed)));
  EXPECT_EQ(destroyed, 3);
  EXPECT_EQ(traces.Count("PostMessage 3196 failed"), 1u);
  EXPECT_EQ(traces.Count("PostMessage 3193 failed"), 1u);
}

TEST(Posting, APostedPayloadBelongsToTheReceiver) {
  int destroyed = 0;
  platform::QueuedWindow window;
  ASSERT_TRUE(service::PostOwned(window.handle(), 3196, std::make_unique<Counted>(&destroyed)));
  EXPECT_EQ(destroyed, 0);
  std::optional<platform::WindowMessage> message = window.Take();
  ASSERT_TRUE(message.has_value());
  service::AdoptPayload<Counted>(message->wParam).reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(SdkEventRecordTest, FlagsStartAtZero) {
  SdkEventRecord record;
  EXPECT_EQ(record.kind, 0u);
  EXPECT_EQ(record.flag1, 0);
  EXPECT_EQ(record.flag2, 0);
  EXPECT_EQ(record.recent_list_flag, 0);
}

TEST(ModuleMutexes, TwentyInOrderAndOnlyTheRecentListOneIsLocked) {
  service::CreateModuleMutexes();
  service::CreateModuleMutexes();  // once only
  const std::vector<platform::NamedMutex*>& handles = service::ModuleMutexes();
  const std::vector<std::string_view>& names = service::ModuleMutexNames();
  ASSERT_EQ(handles.size(), 20u);
  ASSERT_EQ(names.size(), 20u);
  EXPECT_EQ(names.front(), "MsgConvSet");
  EXPECT_EQ(names[5], "RencentConvData");
  EXPECT_EQ(names.back(), "DisplayFriendRequireListMutex");
  for (size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(handles[i]->ObjectName(), platform::NamedMutex::ObjectNameOf(names[i]));
  }
  EXPECT_EQ(names[6], "NewMsgmap");
  EXPECT_EQ(names[7], "NewMsgmap");
  EXPECT_NE(handles[6], handles[7]);
  EXPECT_EQ(handles[6]->ObjectName().size(), 5u);

  CChatTools tools;
  tools.AddRecentConvID(u"a", 1);
  tools.DeleteConv(u"a");
  tools.AddRecentConvID(u"b", 1);
  (void)tools.TakeRecentConv(u"b");
  tools.DealConvListFunc("[]");
  for (size_t i = 0; i < handles.size(); ++i) {
    if (i == 5) {
      EXPECT_EQ(handles[i]->WaitCount(), 2u);
    } else {
      EXPECT_EQ(handles[i]->WaitCount(), 0u) << names[i];
    }
  }
}

TEST(CurrentConversation, StartsAsErrorAndCanBeForgotten) {
  service::ForgetCurrentConversation();
  EXPECT_EQ(service::CurrentConvId(), u"error");
  EXPECT_FALSE(service::IsCurrentConversation(u""));
  service::SetCurrentConversation(u"10002", 1);
  EXPECT_TRUE(service::IsCurrentConversation(u"10002"));
  EXPECT_FALSE(service::IsCurrentConversation(u"10002 "));
  EXPECT_EQ(service::CurrentConvType(), 1u);
  service::ForgetCurrentConversation();
  EXPECT_EQ(service::CurrentConvId(), u"error");
}

}  // namespace
