// Results of sends (on the SDK's thread): the status, the stored message or
// the failure notice, and the upload progress, which the view shows.
#include <json/json.h>

#include <memory>

#include "platform/json_text.h"
#include "platform/trace.h"
#include "records/message_parser.h"
#include "service/callback_owner.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/local_ids.h"
#include "service/posting.h"
#include "service/sdk_text.h"
#include "service/sending_json.h"
#include "service/sending_notice.h"
#include "store/chat_db.h"

namespace {

bool ParseObject(const std::string& text, Json::Value& out) {
  return platform::ParseJsonText(text, out) && out.isObject();
}

}  // namespace

void CChatTools::TIMMsgSendNewMsgFunc(int32_t code, const char*, const char* json, void* user) {
  platform::Trace("TIMMsgSendNewMsgFunc enter!!!!!!");
  CChatTools* self = service::IdCallbackOwner().load();
  if (self == nullptr) return;
  // The id copy is the pending sends' own: redeeming frees it, and an
  // address they did not hand out is never read.
  std::optional<uint32_t> localId = self->sends_.RedeemResultKey(user);
  if (!localId) {
    platform::Trace("TIMMsgSendNewMsgFunc: no send waits for this result");
    return;
  }
  service::SendResult result{code, service::OrEmpty(json)};
  // During the call the sender takes it over once the call returned.
  if (self->sends_.ArriveOrPark(*localId, result)) self->HandleSendResult(*localId, result);
  platform::Trace("TIMMsgSendNewMsgFunc exit!!!!!!");
}

void CChatTools::HandleSendResult(uint32_t localId, const service::SendResult& result) {
  std::optional<MessageStru> pending = sends_.Settle(localId, result.code);
  if (!pending) {
    platform::Trace("TIMMsgSendNewMsgFunc: local id %u is not pending", localId);
    return;
  }
  OnSendMsgUpdateCallback(result.json, *pending, result.code);
  service::Post<platform::msg::kTransferStateChanged>(ChatWindow(), localId);
}

void CChatTools::OnSendMsgUpdateCallback(const std::string& resultJson, MessageStru& pending,
                                         int32_t code) {
  platform::Trace("CChatTools::OnSendMsgUpdateCallback in!");
  if (code == 0) {
    MessageStru stored = StoredSentMessage(resultJson, pending);
    pending.unique_id = stored.unique_id;
    sends_.SetUniqueId(pending.local_id, stored.unique_id);
    store_.SaveMessage(UserId(), stored);
  } else {
    AddSendFailureNotice(pending, service::SendFailureNotice(code, PersonName(pending.conv_id)));
  }
  platform::Trace("CChatTools::OnSendMsgUpdateCallback out!");
}

MessageStru CChatTools::StoredSentMessage(const std::string& resultJson,
                                          const MessageStru& pending) const {
  MessageStru stored;
  Json::Value result;
  if (ParseObject(resultJson, result)) records::ParseSelfMessage(result, stored);
  // The echo is the SDK's view of the message; what it leaves out comes from
  // the message as it was sent.
  if (stored.elems.empty()) stored = pending;
  if (stored.conv_id.empty()) stored.conv_id = pending.conv_id;
  if (stored.conv_type == 0) stored.conv_type = pending.conv_type;
  if (stored.sender.empty()) stored.sender = pending.sender;
  if (stored.server_time == 0) stored.server_time = pending.server_time;
  const Json::Value uniqueId =
      result.isObject() ? result.get("message_unique_id", Json::Value()) : Json::Value();
  stored.unique_id = uniqueId.isUInt64() && uniqueId.asUInt64() != 0
                         ? uniqueId.asUInt64()
                         : service::LocalUniqueId(pending.local_id, stored.server_time);
  stored.is_from_self = true;
  stored.local_id = pending.local_id;
  stored.status = kSent;
  if (!stored.elems.empty()) stored.elems.front().send_status = kSent;
  return stored;
}

void CChatTools::AddSendFailureNotice(const MessageStru& failed, const WString& text) {
  MessageStru notice;
  notice.conv_id = failed.conv_id;
  notice.conv_type = failed.conv_type;
  notice.sender = failed.sender;
  notice.platform = failed.platform;
  notice.server_time = service::NowSeconds();
  notice.local_id = NextLocalId();
  notice.unique_id = service::LocalUniqueId(notice.local_id, notice.server_time);
  store_.SaveLocalNotice(UserId(), notice, text);

  ElemStru elem;
  elem.conv_id = notice.conv_id;
  elem.elem_type = kElemLocalNotice;
  elem.text = text;
  notice.elems.push_back(std::move(elem));
  AppendConversationMessage(notice.conv_id, notice);
  if (service::IsCurrentConversation(notice.conv_id)) {
    service::Post<platform::msg::kRefreshMessageView>(
        ChatWindow(), platform::WPARAM(service::RefreshMode::kNewMessages));
  }
}

void CChatTools::TIMSetMsgElemUploadProgressCallbackFunc(const char* json, uint32_t index,
                                                         uint32_t curSize, uint32_t totalSize,
                                                         void*) {
  platform::Trace("TIMSetMsgElemUploadProgressCallbackFunc enter!!!!!!");
  platform::Trace("Upload Progress:\n json_msg:%s,index:%d,cur_size:%d,total_size:%d",
                  service::OrEmpty(json), static_cast<int>(index), static_cast<int>(curSize),
                  static_cast<int>(totalSize));
  CChatTools* self = service::IdCallbackOwner().load();
  Json::Value value;
  MessageStru message;
  if (self != nullptr && ParseObject(service::OrEmpty(json), value) &&
      records::ParseMessage(value, message)) {
    // The view shows it on the message's item (3164 with its local id).
    if (std::optional<uint32_t> localId =
            self->sends_.RecordUpload(message, index, {curSize, totalSize})) {
      service::Post<platform::msg::kTransferStateChanged>(self->ChatWindow(), *localId);
    } else {
      platform::Trace("Upload progress of no message being sent");
    }
  }
  platform::Trace("index:%u cur_size:%u total_size:%u", index, curSize, totalSize);
  platform::Trace("TIMSetMsgElemUploadProgressCallbackFunc exit!!!!!!");
}
