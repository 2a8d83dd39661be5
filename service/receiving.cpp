// Receiving: pushed messages and fetched history take one path into the
// caches, the local store and the window.
#include <json/json.h>

#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "records/message_parser.h"
#include "records/message_summary.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/posting.h"
#include "service/sending_json.h"
#include "store/chat_db.h"

namespace {

bool IsChatConversation(uint32_t convType) {
  return convType == 1 || convType == 2;
}

// A message whose only content was custom payloads that are never kept (a
// drawing-sync instruction, an unknown kind): nothing to show or store.
bool IsInstructionOnly(const MessageStru& message) {
  return message.elems.empty() && message.dropped_custom_count > 0;
}

}  // namespace

void CChatTools::GetMsgList(const WString& convId, uint32_t convType, uint32_t count) {
  platform::Trace("获取指定会话的消息列表 开始!!!");
  Json::Value param;
  param["msg_getmsglist_param_last_msg"] = Json::Value(Json::objectValue);
  param["msg_getmsglist_param_is_remble"] = true;
  param["msg_getmsglist_param_is_forward"] = false;
  param["msg_getmsglist_param_count"] = count;
  int ret = TIMMsgGetMsgList(platform::Utf16ToUtf8(convId).c_str(), static_cast<int32_t>(convType),
                             service::CompactText(param).c_str(), &CChatTools::TIMMsgGetMsgListFunc,
                             this);
  if (ret != 0) platform::Trace("获取指定会话的消息列表 !!! ret %d", ret);
  platform::Trace("获取指定会话的消息列表 结束!!!");
}

void CChatTools::OnMsgListArrived(std::unique_ptr<std::string> json) {
  if (json == nullptr) return;
  SdkEventRecord record;
  record.kind = kSdkEventNewMessages;
  record.text = std::move(*json);
  json.reset();
  record.flag1 = 1;
  record.flag2 = 0;  // fetched history never acts on drawing-sync instructions
  OnRecvNewMsg(&record);
}

bool CChatTools::ParseMsgData(const std::string& text, uint8_t pushed,
                              std::vector<MessageStru>& out) {
  ReceiveOptions options;
  options.act_on_sync = pushed != 0;
  options.handler = pushed != 0 ? ReceivedDrawingHandler() : nullptr;
  return records::ParseMessageArray(text, out, options);
}

void CChatTools::OnRecvNewMsg(const SdkEventRecord* record) {
  platform::Trace("****** CChatTools::OnRecvNewMsg in ******");
  if (record == nullptr || record->text.empty()) return;
  std::vector<MessageStru> messages;
  if (!ParseMsgData(record->text, record->flag2, messages)) {
    platform::Trace("****** CChatTools::OnRecvNewMsg return ******");
    return;
  }
  CheckDrawingSync(messages);
  for (const MessageStru& message : messages) HandleGroupEvents(message);

  // Messages by conversation, conversations in order of first appearance.
  std::vector<std::pair<WString, std::vector<MessageStru>>> byConversation;
  std::map<WString, size_t> slot;
  for (MessageStru& message : messages) {
    if (!IsChatConversation(message.conv_type)) {
      // System messages (friend and profile changes) are not shown.
      platform::Trace("OnRecvNewMsg: system message of conversation type %u dropped",
                      message.conv_type);
      continue;
    }
    auto [it, added] = slot.try_emplace(message.conv_id, byConversation.size());
    if (added) byConversation.emplace_back(message.conv_id, std::vector<MessageStru>{});
    byConversation[it->second].second.push_back(std::move(message));
  }
  for (auto& [convId, list] : byConversation) {
    uint32_t convType = list.front().conv_type;
    AcceptConversationMessages(convId, convType, std::move(list), record->flag1 != 0);
  }
  platform::Trace("****** CChatTools::OnRecvNewMsg out ******");
}

void CChatTools::AcceptConversationMessages(const WString& convId, uint32_t convType,
                                            std::vector<MessageStru> messages, bool notify) {
  CChatDb::Instance().SaveMessageList(UserId(), messages);

  bool fromPeer = false;
  for (const MessageStru& message : messages) fromPeer = fromPeer || !message.is_from_self;
  if (notify && fromPeer) Window().FlashHostWindowIfMinimised();

  bool known = false;
  bool registered = false;
  platform::WindowHandle window = ChatWindow();
  {
    std::lock_guard lock(cache_mutex_);
    known = conversations_.count(convId) != 0;
    for (const RecentConversation& recent : recent_) known = known || recent.info.conv_id == convId;
    auto [it, added] = conversations_.try_emplace(convId);
    registered = added;
    ConversationInfo_Stru& conv = it->second;
    conv.conv_id = convId;
    conv.conv_type = convType;
    conv.has_last_msg = true;
    conv.last_msg = messages.back();
    conv.active_time = messages.back().server_time;
    std::vector<MessageStru>& cached = new_messages_[convId];
    cached.insert(cached.end(), std::make_move_iterator(messages.begin()),
                  std::make_move_iterator(messages.end()));
  }
  if (registered) {
    service::PostOwned(window, platform::msg::kConversationLogoChanged,
                       std::make_unique<WString>(convId));
  }

  AddRecentConvID(convId, convType);
  {
    std::lock_guard lock(cache_mutex_);
    if (fromPeer) unread_.insert(convId);
    ++unread_events_;
    for (RecentConversation& recent : recent_) {
      if (recent.info.conv_id != convId) continue;
      uint64_t peerMessages = 0;
      for (const MessageStru& message : messages) peerMessages += message.is_from_self ? 0 : 1;
      recent.info.unread_num += peerMessages;
      recent.info.active_time = conversations_[convId].active_time;
      recent.info.has_last_msg = true;
      recent.info.last_msg = conversations_[convId].last_msg;
    }
  }
  service::Post(window, platform::msg::kUnreadMarker);
  if (!known) RequestConvList();

  if (service::IsCurrentConversation(convId)) {
    service::Post(window, platform::msg::kRefreshMessageView, 4);
  }
}

void CChatTools::CheckDrawingSync(std::vector<MessageStru>& messages) {
  platform::WindowHandle window = ChatWindow();
  for (const MessageStru& message : messages) {
    for (const ElemStru& elem : message.elems) {
      if (elem.elem_type != kElemCustom) continue;
      const DrawingMsgStru& drawing = elem.drawing;
      if (drawing.msgType == kDrawingMsgSharedChat &&
          (drawing.instruct == 2 || drawing.instruct == 4)) {
        service::PostOwned(window, platform::msg::kDrawingSyncNotice,
                           std::make_unique<MessageStru>(message));
      }
    }
  }
  // Instructions are acted on while parsing; they are neither shown nor stored.
  std::erase_if(messages, IsInstructionOnly);
}

void CChatTools::HandleGroupEvents(const MessageStru& message) {
  platform::WindowHandle window = ChatWindow();
  WString self = UserId();
  for (const ElemStru& elem : message.elems) {
    if (elem.elem_type == kElemCustom && elem.drawing.subType == 1) {
      service::Post(window, platform::msg::kReloadGroupsFromHost);
      continue;
    }
    if (elem.elem_type == kElemGroupReport && elem.report_type == kTIMGroupReport_Disband) {
      // A disbanded group is reported, not announced by group tips: reload
      // the groups here, or it stays in the group list.
      LoadHostGroups();
      RequestJoinedGroupList();
    }
    std::optional<records::GroupChangeReminder> reminder =
        records::GroupChangeReminderFor(elem, self);
    if (!reminder) continue;
    StoreReminder(message, reminder->text);
    if (reminder->new_group_name) {
      service::PostOwnedPair(window, platform::msg::kConversationNameChanged,
                             std::make_unique<WString>(message.conv_id),
                             std::make_unique<WString>(*reminder->new_group_name));
    }
  }
}

void CChatTools::StoreReminder(const MessageStru& context, const WString& text) {
  CChatDb::Instance().SaveLocalNotice(UserId(), context, text);
  MessageStru notice = context;
  ElemStru elem;
  elem.conv_id = context.conv_id;
  elem.elem_type = kElemLocalNotice;
  elem.text = text;
  notice.elems.assign(1, std::move(elem));
  {
    // Into the view's queue only: the tips message itself registers the
    // conversation afterwards.
    std::lock_guard lock(cache_mutex_);
    new_messages_[context.conv_id].push_back(std::move(notice));
  }
  service::Post(ChatWindow(), platform::msg::kRefreshMessageView, 4);
}

void CChatTools::ReportReaded(const WString& convId, uint32_t convType) {
  platform::Trace("消息已读上报 开始!!!");
  int ret =
      TIMMsgReportReaded(platform::Utf16ToUtf8(convId).c_str(), static_cast<int32_t>(convType), "",
                         &CChatTools::IMMsgReportReadedFunc, this);
  if (ret != 0) platform::Trace("消息已读上报,失败!!! ret:%d", ret);
  platform::Trace("消息已读上报 结束!!!");
}
