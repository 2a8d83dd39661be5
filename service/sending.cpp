// Sending: the element builders, SendMsg and the drawing placeholder.
#include <json/json.h>

#include <atomic>

#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "records/message_parser.h"
#include "service/callback_owner.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "service/sdk_text.h"
#include "service/sending_json.h"

namespace {

using service::Utf8;

using service::EnterExitTrace;

Json::Value OneElem(Json::Value elem) {
  Json::Value array(Json::arrayValue);
  array.append(std::move(elem));
  return array;
}

}  // namespace

bool CChatTools::OnSendTextElem(const WString& convId, uint32_t convType, const WString& text) {
  EnterExitTrace trace("OnSendTextElem");
  Json::Value elem;
  elem["elem_type"] = 0;
  elem["text_elem_content"] = Utf8(text);
  MessageStru pending;
  if (SendMsg(convId, convType, OneElem(elem), pending)) return true;
  platform::Trace("SendMessage Failure!");
  return false;
}

bool CChatTools::OnSendImageElem(const WString& convId, uint32_t convType,
                                 const WString& imagePath) {
  EnterExitTrace trace("OnSendImageElem");
  Json::Value elem;
  elem["elem_type"] = 1;
  elem["image_elem_orig_path"] = Utf8(imagePath);
  MessageStru pending;
  if (SendMsg(convId, convType, OneElem(elem), pending)) return true;
  platform::Trace("SendMessage Failure!");
  return false;
}

bool CChatTools::OnSendFileElem(const WString& convId, uint32_t convType, const WString& filePath,
                                const WString& fileName, int64_t fileSize) {
  EnterExitTrace trace("OnSendFileElem");
  Json::Value elem;
  elem["elem_type"] = 4;
  elem["file_elem_file_path"] = Utf8(filePath);
  elem["file_elem_file_name"] = Utf8(fileName);
  elem["file_elem_file_size"] = Json::Int64(fileSize);
  MessageStru pending;
  if (SendMsg(convId, convType, OneElem(elem), pending)) return true;
  platform::Trace("SendMessage Failure!");
  return false;
}

bool CChatTools::OnSenddrawingFileElem(const WString& convId, uint32_t convType,
                                       const DrawingMsgStru& drawing, uint32_t placeholderLocalId) {
  EnterExitTrace trace("OnSenddrawingFileElem");
  Json::Value payload = service::DrawingFilePayload(drawing, UserId(), service::NowMilliseconds());
  MessageStru pending;
  pending.local_id = placeholderLocalId;
  if (SendMsg(convId, convType, OneElem(service::CustomElem(service::CompactText(payload))),
              pending)) {
    return true;
  }
  platform::Trace("SendMessage Failure!");
  return false;
}

uint32_t CChatTools::SendFakeMsg(const WString& convId, uint32_t convType,
                                 const DrawingMsgStru& drawing) {
  platform::Trace("OnSendFileElem enter!!!!!!");
  const WString self = UserId();
  Json::Value message = service::MessageHeader(self, convId, convType, service::NowSeconds());
  Json::Value payload = service::DrawingFilePayload(drawing, self, service::NowMilliseconds());
  message["message_elem_array"] = OneElem(service::CustomElem(service::CompactText(payload)));

  MessageStru placeholder;
  records::ParseMessage(message, placeholder);
  placeholder.is_from_self = true;
  sends_.RegisterPlaceholder(placeholder);
  AppendConversationMessage(convId, placeholder);
  service::Post<platform::msg::kRefreshMessageView>(
      ChatWindow(), platform::WPARAM(service::RefreshMode::kReloadToEnd));
  platform::Trace("SendFakeMsg exit!!!!!!");
  return placeholder.local_id;
}

bool CChatTools::FailPlaceholder(uint32_t localId) {
  if (!sends_.FailPlaceholder(localId)) return false;
  service::Post<platform::msg::kTransferStateChanged>(ChatWindow(), localId);
  return true;
}

bool CChatTools::SendMsg(const WString& convId, uint32_t convType, const Json::Value& elemArray,
                         MessageStru& pending) {
  platform::Trace("SendMsg enter!!!!!!");
  Json::Value message = service::MessageHeader(UserId(), convId, convType, service::NowSeconds());
  message["message_platform"] = service::kMessagePlatform;
  message["message_elem_array"] = elemArray;
  const uint32_t wanted = pending.local_id;
  pending = MessageStru{};
  records::ParseMessage(message, pending);
  pending.is_from_self = true;
  pending.local_id = wanted;

  // From here until LeaveCall a result is parked, whether the SDK gives it
  // inside the call or on its own thread: the message is listed first.
  const bool tookOver = sends_.Register(pending);
  const uint32_t localId = pending.local_id;
  service::IdCallbackOwner().store(this);
  void* key = sends_.IssueResultKey(localId);
  int ret = TIMMsgSendNewMsg(Utf8(convId).c_str(), static_cast<int32_t>(convType),
                             service::StyledText(message).c_str(),
                             &CChatTools::TIMMsgSendNewMsgFunc, key);
  if (ret != 0) {
    platform::Trace("发送消息失败!!!");
    sends_.RedeemResultKey(key);
    if (sends_.Abandon(localId, tookOver)) {
      service::Post<platform::msg::kTransferStateChanged>(ChatWindow(), localId);
    }
    return false;
  }
  // A placeholder's message is in the list already, under the same id.
  if (!tookOver) AppendConversationMessage(convId, pending);
  platform::WindowHandle window = ChatWindow();
  service::Post<platform::msg::kRefreshMessageView>(
      window, platform::WPARAM(service::RefreshMode::kReloadToEnd));
  service::Post<platform::msg::kClearComposer>(window);
  // A result that came during the call waited for the message to be shown.
  if (std::optional<service::SendResult> early = sends_.LeaveCall(localId)) {
    HandleSendResult(localId, *early);
  }
  platform::Trace("SendMsg exit!!!!!!");
  return true;
}
