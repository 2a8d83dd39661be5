// Posting payloads, the named mutexes, the open conversation.
#include <gtest/gtest.h>

#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/named_mutexes.h"
#include "service/posting.h"

namespace {

TEST(Posting, FailedPostFreesAndTracesAPostedPayloadBelongsToTheReceiver) {
  namespace msg = platform::msg;
  platform::ScopedTraceCapture traces;
  platform::QueuedWindow window;
  ASSERT_TRUE(service::PostPayload<msg::kConversationNameChanged>(window.handle(), 7, u"g1", u"n"));
  platform::WindowMessage posted = *window.Take();
  auto name = service::AdoptPostedSecond<msg::kConversationNameChanged>(posted.lParam);
  EXPECT_EQ(service::AdoptPosted<msg::kConversationNameChanged>(posted.wParam)->value, u"g1");
  EXPECT_EQ(name->value, u"n");
  EXPECT_EQ(name->session, 7u);

  window.Destroy();
  // Freed here: the leak check of the sanitised run would see a payload left behind.
  EXPECT_FALSE(service::PostPayload<msg::kMessageListArrived>(window.handle(), 7, "[]"));
  EXPECT_FALSE(service::PostPayload<msg::kConversationNameChanged>(window.handle(), 7, u"g", u"n"));
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
