// The recent-conversation list and conversations in the SDK.
#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "records/conversation_parser.h"
#include "service/chat_tools.h"
#include "service/named_mutexes.h"
#include "service/posting.h"
#include "service/sdk_text.h"
#include "store/chat_db.h"

using service::OrEmpty;

void CChatTools::CreateConv(WString convId, uint32_t convType) {
  std::string id = platform::Utf16ToUtf8(convId);
  platform::Trace("创建会话按钮 开始!!! conv id:%s ,conv type:%u", id.c_str(), convType);
  int ret = TIMConvCreate(id.c_str(), static_cast<int32_t>(convType),
                          &CChatTools::TIMConvCreateFunc, this);
  if (ret != 0) {
    platform::Trace("创建会话 失败!!! error code:%d", ret);
  } else {
    platform::Trace("创建会话按钮 结束!!!");
  }
}

void CChatTools::TIMConvCreateFunc(int32_t code, const char* desc, const char* json, void* user) {
  auto ucode = static_cast<unsigned>(code);
  if (code != 0) {
    if (user != nullptr) {
      From(user)->Window().ShowMessageBox(service::BoxOwner::kNone, u"提示", u"创建会话失败");
    }
    platform::Trace("创建会话 失败! code:%u ,desc:%s ,json_params:%s", ucode, OrEmpty(desc),
                    OrEmpty(json));
    return;
  }
  platform::Trace("创建会话 成功! code:%u ,desc:%s ,json_params:%s", ucode, OrEmpty(desc),
                  OrEmpty(json));
}

int32_t CChatTools::Require_TIMConvDel(WString convId, uint32_t convType) {
  platform::Trace("Require_TIMConvDel enter!!!!!!");
  int ret = TIMConvDelete(platform::Utf16ToUtf8(convId).c_str(), static_cast<int32_t>(convType),
                          &CChatTools::TIMConvDeleteFunc, this);
  if (ret != 0) platform::Trace("删除会话 失败!ret:%d", ret);
  platform::Trace("Require_TIMConvDel exit!!!!!!");
  return ret;
}

int CChatTools::RequestConvList() {
  platform::Trace("获取最近联系人的会话列表 开始!!!");
  int ret = TIMConvGetConvList(&CChatTools::TIMConvGetConvListFunc, this);
  if (ret != 0) {
    platform::Trace("获取最近联系人的会话列表 失败!!! ret:%d", ret);
  } else {
    platform::Trace("获取最近联系人的会话列表 结束!!!");
  }
  return ret;
}

void CChatTools::AddRecentConvID(const WString& convId, uint32_t convType) {
  service::EnterExitTrace trace("AddRecentConvID");
  if (recent_.AddRecent(convId, convType)) {
    service::Post<platform::msg::kRecentConversationsChanged>(ChatWindow());
  }
}

void CChatTools::DeleteConv(WString convId) {
  service::EnterExitTrace trace("DeleteConv");
  {
    service::RecentConvDataLock guard;
    // The record goes from the list even when the SDK refuses the deletion.
    if (std::optional<uint32_t> type = recent_.RemoveRecent(convId)) {
      Require_TIMConvDel(convId, *type);
    }
  }
  service::Post<platform::msg::kRecentConversationsChanged>(ChatWindow());
}

std::optional<RecentConversation> CChatTools::TakeRecentConv(const WString& convId) {
  service::RecentConvDataLock guard;
  return recent_.TakeRecent(convId);
}

void CChatTools::InsertRecentConvFront(RecentConversation record) {
  recent_.InsertRecentFront(std::move(record));
}

void CChatTools::DealConvListFunc(const std::string& json) {
  DealConvList(json, CurrentSession());
}

void CChatTools::DealConvList(const std::string& json, service::SessionStamp session) {
  service::EnterExitTrace trace("DealConvListFunc");
  std::vector<ConversationInfo_Stru> list;
  if (!records::ParseConversationArray(json, list)) {
    platform::Trace("解析json数据错误！error:%s", "conversation list is not a JSON array");
    return;
  }
  const WString self = UserId();
  std::vector<RecentConversation> rebuilt;
  std::vector<ConversationInfo_Stru> withLastMessage;
  std::vector<WString> notJoined;
  for (ConversationInfo_Stru& conv : list) {
    if (!IsChatConversation(conv.conv_type)) continue;
    if (conv.conv_type == kConvGroup && !groups_.MayBeJoined(conv.conv_id)) {
      notJoined.push_back(conv.conv_id);
      continue;
    }
    if (conv.has_last_msg) {
      withLastMessage.push_back(conv);
    } else {
      std::vector<MessageStru> newest;
      if (store_.QueryCurrentConvMsg(conv.conv_id, self, 1, newest) && !newest.empty()) {
        conv.last_msg = std::move(newest.front());
        conv.active_time = conv.last_msg.server_time;
      }
    }
    RecentConversation record;
    record.info = std::move(conv);
    rebuilt.push_back(std::move(record));
  }
  const bool current = session_.WhileCurrent(session, [&] {
    for (const WString& groupId : notJoined) store_.RunSql(self, groupId);
    recent_.ReplaceRecent(std::move(rebuilt), std::move(withLastMessage));
  });
  if (!current) return;
  for (const WString& groupId : notJoined) Require_TIMConvDel(groupId, kConvGroup);
  service::Post<platform::msg::kRecentConversationsChanged>(ChatWindow());
}
