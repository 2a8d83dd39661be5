// TEMPORARY: definitions that keep the library linkable until the sending,
// friendship and drawing-sync files land. Each is replaced there; delete this
// file in the commit that adds them. Nothing here is the real behaviour.
#include "platform/trace.h"
#include "service/chat_tools.h"

void CChatTools::TIMSetMsgElemUploadProgressCallbackFunc(const char*, uint32_t, uint32_t, uint32_t,
                                                         void*) {}

bool CChatTools::sendChatDrawingMsg(const WString&) {
  platform::Trace("sendChatDrawingMsg: not built yet");
  return false;
}

int CChatTools::RequestPendencyList(int) {
  platform::Trace("RequestPendencyList: not built yet");
  return -1;
}

int CChatTools::RequestUserProfiles(const std::vector<WString>&) {
  platform::Trace("RequestUserProfiles: not built yet");
  return -1;
}

void CChatTools::OnFriendAddRequest(const SdkEventRecord&) {
  platform::Trace("OnFriendAddRequest: not built yet");
}

DrawingPayloadHandler* CChatTools::ReceivedDrawingHandler() {
  return nullptr;
}
