// Hostile SDK texts through every callback that reads JSON: nothing may leave
// a callback by exception (that would end the host), and the parse refuses
// them with a trace.
#include <string>

#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

using ResultCallback = void (*)(int32_t, const char*, const char*, void*);
using EventCallback = void (*)(const char*, void*);

std::string DeepArray(size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

using HostileInputTest = ServiceTest;

TEST_F(HostileInputTest, DeepPayloadThroughEveryCallbackIsRefusedWithoutThrowing) {
  ASSERT_TRUE(SignIn());
  const std::string deep = DeepArray(5000);
  void* user = tools.get();
  const EventCallback events[] = {
      &CChatTools::TIMAddRecvNewMsgCallbackFunc,
      &CChatTools::TIMSetMsgRevokeCallbackFunc,
      &CChatTools::TIMSetGroupTipsEventCallbackFunc,
      &CChatTools::TIMSetOnDeleteFriendCallbackFunc,
      &CChatTools::TIMSetFriendAddRequestCallbackFunc,
  };
  const ResultCallback results[] = {
      &CChatTools::TIMConvGetConvListFunc,
      &CChatTools::TIMMsgGetMsgListFunc,
      &CChatTools::TIMFriendshipGetFriendProfileListFunc,
      &CChatTools::TIMGroupGetJoinedGroupListFunc,
      &CChatTools::TIMMsgDownloadFileElemToPathFunc,
  };
  ClearSeen();
  traces.Clear();
  for (EventCallback callback : events) callback(deep.c_str(), user);
  for (ResultCallback callback : results) callback(0, "", deep.c_str(), user);
  CChatTools::TIMSetMsgElemUploadProgressCallbackFunc(deep.c_str(), 0, 1, 2, user);
  MessageStru pending;
  pending.conv_id = u"10002";
  tools->OnSendMsgUpdateCallback(deep, pending, 0);
  tools->DownloadMessageElem(platform::Utf8ToUtf16(deep), u"/nonexistent/file", 7);
  DrainNow();
  EXPECT_GE(traces.Count("nesting deeper than"), 10u);
  // Still signed in and working.
  ASSERT_TRUE(HandlePushed(engine.SendText("10002", 1, "10001", "after")));
}

}  // namespace
}  // namespace service_test
