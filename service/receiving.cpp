// Receiving: pushed messages and fetched history take one path into the
// caches, the local store and the window.
#include <json/json.h>

#include <algorithm>

#include "host/host_access.h"
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

void CChatTools::OnMsgListArrived(std::string json, service::SessionStamp session) {
  SdkEventRecord record;
  record.kind = kSdkEventNewMessages;
  record.text = std::move(json);
  // Fetched history: it never flashes the host window and never acts on
  // drawing-sync instructions.
  record.flag1 = 0;
  record.flag2 = 0;
  OnRecvNewMsg(&record, session);
}

bool CChatTools::ParseMsgData(const std::string& text, uint8_t pushed,
                              std::vector<MessageStru>& out) {
  ReceiveOptions options;
  options.act_on_sync = pushed != 0;
  options.handler = pushed != 0 ? ReceivedDrawingHandler() : nullptr;
  return records::ParseMessageArray(text, out, options);
}

void CChatTools::OnRecvNewMsg(const SdkEventRecord* record) {
  OnRecvNewMsg(record, CurrentSession());
}

void CChatTools::OnRecvNewMsg(const SdkEventRecord* record, service::SessionStamp session) {
  platform::Trace("****** CChatTools::OnRecvNewMsg in ******");
  if (record == nullptr || record->text.empty()) return;
  if (!session_.IsCurrent(session)) {
    platform::Trace("OnRecvNewMsg: messages of an ended session dropped");
    return;
  }
  ReceiveMessages(*record, session);
  platform::Trace("****** CChatTools::OnRecvNewMsg out ******");
}

void CChatTools::ReceiveMessages(const SdkEventRecord& record, service::SessionStamp session) {
  const bool pushed = record.flag2 != 0;
  std::vector<MessageStru> messages;
  if (!ParseMsgData(record.text, record.flag2, messages)) {
    platform::Trace("****** CChatTools::OnRecvNewMsg return ******");
    return;
  }
  // A history page comes newest first; everything below takes messages
  // oldest first, so that the newest ends up as the last message.
  if (!pushed) std::reverse(messages.begin(), messages.end());
  if (pushed) {
    CheckDrawingSync(messages, session);
  } else {
    std::erase_if(messages, IsInstructionOnly);
  }
  for (const MessageStru& message : messages) HandleGroupEvents(message, session);

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
    AcceptConversationMessages(convId, convType, std::move(list), pushed && record.flag1 != 0,
                               pushed, session);
  }
  if (pushed && !byConversation.empty()) {
    if (HostAppService* app = host::AcquireAppService("CChatTools::OnRecvNewMsg")) {
      app->NotifyNewMessage();
    }
  }
}

void CChatTools::AcceptConversationMessages(const WString& convId, uint32_t convType,
                                            std::vector<MessageStru> messages, bool notify,
                                            bool pushed, service::SessionStamp session) {
  bool fromPeer = false;
  for (const MessageStru& message : messages) fromPeer = fromPeer || !message.is_from_self;
  const WString user = UserId();
  service::AcceptedBatch batch;
  // Fetched history was counted unread when it arrived the first time.
  const bool stored = session_.WhileCurrent(session, [&] {
    store_.SaveMessageList(user, messages);
    batch = recent_.Accept(convId, convType, std::move(messages), pushed);
  });
  if (!stored) return;
  if (notify && fromPeer) Window().FlashHostWindowIfMinimised();

  platform::WindowHandle window = ChatWindow();
  namespace msg = platform::msg;
  if (batch.registered) {
    service::PostPayload<msg::kConversationLogoChanged>(window, session, convId);
  }
  if (batch.added_recent) service::Post<msg::kRecentConversationsChanged>(window);
  if (pushed) service::Post<msg::kUnreadMarker>(window);
  if (!batch.known) RequestConvList();
  if (service::IsCurrentConversation(convId)) {
    service::Post<msg::kRefreshMessageView>(window,
                                            platform::WPARAM(service::RefreshMode::kNewMessages));
  }
}

void CChatTools::CheckDrawingSync(std::vector<MessageStru>& messages,
                                  service::SessionStamp session) {
  platform::WindowHandle window = ChatWindow();
  for (const MessageStru& message : messages) {
    for (const ElemStru& elem : message.elems) {
      if (elem.elem_type != kElemCustom) continue;
      const DrawingMsgStru& drawing = elem.drawing;
      if (drawing.msgType == kDrawingMsgSharedChat &&
          (drawing.instruct == 2 || drawing.instruct == 4)) {
        service::PostPayload<platform::msg::kDrawingSyncNotice>(window, session, message);
      }
    }
  }
  // Instructions are acted on while parsing; they are neither shown nor stored.
  std::erase_if(messages, IsInstructionOnly);
}

void CChatTools::HandleGroupEvents(const MessageStru& message, service::SessionStamp session) {
  platform::WindowHandle window = ChatWindow();
  WString self = UserId();
  for (const ElemStru& elem : message.elems) {
    if (elem.elem_type == kElemCustom && elem.drawing.subType == 1) {
      service::Post<platform::msg::kReloadGroupsFromHost>(window);
      continue;
    }
    if (elem.elem_type == kElemGroupReport && elem.report_type == kTIMGroupReport_Disband) {
      // A disbanded group is reported, not announced by group tips: reload
      // the groups here, or it stays in the group list.
      LoadHostGroups(session);
      RequestJoinedGroupList();
    }
    std::optional<records::GroupChangeReminder> reminder =
        records::GroupChangeReminderFor(elem, self);
    if (!reminder) continue;
    StoreReminder(message, reminder->text, session);
    if (reminder->new_group_name) {
      service::PostPayload<platform::msg::kConversationNameChanged>(
          window, session, message.conv_id, *reminder->new_group_name);
    }
  }
}

void CChatTools::StoreReminder(const MessageStru& context, const WString& text,
                               service::SessionStamp session) {
  MessageStru notice = context;
  ElemStru elem;
  elem.conv_id = context.conv_id;
  elem.elem_type = kElemLocalNotice;
  elem.text = text;
  notice.elems.assign(1, std::move(elem));
  const WString user = UserId();
  // Into the view's queue only: the tips message itself registers the
  // conversation afterwards.
  const bool stored = session_.WhileCurrent(session, [&] {
    store_.SaveLocalNotice(user, context, text);
    recent_.QueueMessage(context.conv_id, std::move(notice));
  });
  if (stored) {
    service::Post<platform::msg::kRefreshMessageView>(
        ChatWindow(), platform::WPARAM(service::RefreshMode::kNewMessages));
  }
}

void CChatTools::ReportReaded(const WString& convId, uint32_t convType) {
  platform::Trace("消息已读上报 开始!!!");
  int ret =
      TIMMsgReportReaded(platform::Utf16ToUtf8(convId).c_str(), static_cast<int32_t>(convType), "",
                         &CChatTools::IMMsgReportReadedFunc, this);
  if (ret != 0) platform::Trace("消息已读上报,失败!!! ret:%d", ret);
  platform::Trace("消息已读上报 结束!!!");
}
