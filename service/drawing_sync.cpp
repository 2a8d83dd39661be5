// Drawing-sync messages: sending the host's payloads to its shared
// conversation, and handing received payloads to the host.
#include <json/json.h>

#include "host/drawing_sync.h"
#include "host/host_access.h"
#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/sending_json.h"

namespace {

// Received payloads go to the host, which acts only when its shared drawing
// belongs to the message's conversation. Stateless: one for the process.
class HostDrawingHandler final : public DrawingPayloadHandler {
 public:
  void OnDrawingSync(const WString& convId, const DrawingMsgStru& drawing,
                     const Json::Value& payload) override {
    Hand(convId, kDrawingMsgSyncInstruct, drawing, payload);
  }
  void OnChatDrawingUpdate(const WString& convId, const DrawingMsgStru& drawing,
                           const Json::Value& payload) override {
    Hand(convId, kDrawingMsgSharedChat, drawing, payload);
  }

 private:
  static void Hand(const WString& convId, uint32_t msgType, const DrawingMsgStru& drawing,
                   const Json::Value& payload) {
    host::ReceivedDrawingSync message;
    message.target = convId;
    message.msgType = msgType;
    message.subType = static_cast<int32_t>(drawing.subType);
    message.sender = drawing.fromUserId;
    // The host gets the payload as it travelled.
    message.content = platform::Utf8ToUtf16(service::CompactText(payload));
    host::HandleReceivedDrawingSync(message);
  }
};

}  // namespace

DrawingPayloadHandler* CChatTools::ReceivedDrawingHandler() {
  static HostDrawingHandler handler;
  return &handler;
}

bool CChatTools::sendChatDrawingMsg(const WString& payload) {
  platform::Trace("sendChatDrawingMsg enter!!!!!!");
  WString convId;
  if (HostAppService* app = host::AcquireAppService("CChatTools::sendChatDrawingMsg  error ")) {
    const char16_t* key = app->GetSessionKey();
    if (key != nullptr) convId = key;  // copied at once: the host owns the text
  }
  if (convId.empty()) {
    platform::Trace("sendChatDrawingMsg: no shared conversation");
    platform::Trace("sendChatDrawingMsg exit!!!!!!");
    return false;
  }
  const uint32_t convType = GetCurrenConvType(convId);
  Json::Value elem = service::CustomElem(platform::Utf16ToUtf8(payload));
  elem["custom_elem_desc"] = "";
  elem["custom_elem_ext"] = "";
  elem["custom_elem_sound"] = "";
  Json::Value message = service::MessageHeader(UserId(), convId, convType, service::NowSeconds());
  // Instructions matter only to the members in the session now.
  message["message_is_online_msg"] = true;
  message["message_elem_array"].append(elem);
  int ret = TIMMsgSendNewMsg(platform::Utf16ToUtf8(convId).c_str(), static_cast<int32_t>(convType),
                             service::StyledText(message).c_str(),
                             &CChatTools::SendChatDrawingMsgFunc, nullptr);
  if (ret != 0) platform::Trace("TIMMsgSendNewMsg 发送自定义消息失败!!!");
  platform::Trace("sendChatDrawingMsg exit!!!!!!");
  return ret == 0;
}

void CChatTools::SendChatDrawingMsgFunc(int32_t code, const char*, const char*, void*) {
  if (code != 0) platform::Trace("自定义消息发送失败！！！");
}
