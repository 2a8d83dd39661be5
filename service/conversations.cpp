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
  platform::Trace("AddRecentConvID enter!!!!!!");
  bool added = false;
  {
    std::lock_guard lock(cache_mutex_);
    bool present = false;
    for (const RecentConversation& recent : recent_)
      present = present || recent.info.conv_id == convId;
    if (!present) {
      RecentConversation record;
      record.info.conv_id = convId;
      record.info.conv_type = convType;
      record.opened = 1;
      record.listed = 1;
      recent_.push_back(std::move(record));
      added = true;
    }
  }
  if (added) service::Post(ChatWindow(), platform::msg::kRecentConversationsChanged);
  platform::Trace("AddRecentConvID exit!!!!!!");
}

void CChatTools::DeleteConv(WString convId) {
  platform::Trace("DeleteConv enter!!!!!!");
  {
    service::RecentConvDataLock guard;
    std::optional<uint32_t> type;
    {
      std::lock_guard lock(cache_mutex_);
      for (auto it = recent_.begin(); it != recent_.end(); ++it) {
        if (it->info.conv_id != convId) continue;
        type = it->info.conv_type;
        recent_.erase(it);
        break;
      }
    }
    // The record goes from the list even when the SDK refuses the deletion.
    if (type) Require_TIMConvDel(convId, *type);
  }
  service::Post(ChatWindow(), platform::msg::kRecentConversationsChanged);
  platform::Trace("DeleteConv exit!!!!!!");
}

std::optional<RecentConversation> CChatTools::TakeRecentConv(const WString& convId) {
  service::RecentConvDataLock guard;
  std::lock_guard lock(cache_mutex_);
  for (auto it = recent_.begin(); it != recent_.end(); ++it) {
    if (it->info.conv_id != convId) continue;
    RecentConversation taken = std::move(*it);
    recent_.erase(it);
    return taken;
  }
  return std::nullopt;
}

void CChatTools::InsertRecentConvFront(RecentConversation record) {
  std::lock_guard lock(cache_mutex_);
  recent_.push_front(std::move(record));
}

void CChatTools::DealConvListFunc(const std::string& json) {
  platform::Trace("DealConvListFunc enter!!!!!!");
  std::vector<ConversationInfo_Stru> list;
  if (!records::ParseConversationArray(json, list)) {
    platform::Trace("解析json数据错误！error:%s", "conversation list is not a JSON array");
    return;
  }
  WString self = UserId();
  std::vector<RecentConversation> rebuilt;
  std::vector<ConversationInfo_Stru> lastMessages;
  std::vector<WString> notJoined;
  for (ConversationInfo_Stru& conv : list) {
    if (conv.conv_type != 1 && conv.conv_type != 2) continue;
    bool joined = true;
    if (conv.conv_type == 2) {
      std::lock_guard lock(cache_mutex_);
      joined = IsKnownGroupLocked(conv.conv_id);
    }
    if (!joined) {
      notJoined.push_back(conv.conv_id);
      continue;
    }
    if (conv.has_last_msg) {
      lastMessages.push_back(conv);
    } else {
      std::vector<MessageStru> newest;
      if (CChatDb::Instance().QueryCurrentConvMsg(conv.conv_id, self, 1, newest) &&
          !newest.empty()) {
        conv.last_msg = std::move(newest.front());
        conv.active_time = conv.last_msg.server_time;
      }
    }
    RecentConversation record;
    record.info = std::move(conv);
    rebuilt.push_back(std::move(record));
  }
  for (const WString& groupId : notJoined) {
    Require_TIMConvDel(groupId, 2);
    CChatDb::Instance().RunSql(self, groupId);
  }
  {
    std::lock_guard lock(cache_mutex_);
    // Rebuilt from each list, never merged.
    recent_.assign(std::make_move_iterator(rebuilt.begin()),
                   std::make_move_iterator(rebuilt.end()));
    for (ConversationInfo_Stru& conv : lastMessages) conversations_[conv.conv_id] = std::move(conv);
    ++conv_list_count_;
    if (!recent_.empty()) first_list_flag_ = 0;
  }
  service::Post(ChatWindow(), platform::msg::kRecentConversationsChanged);
  platform::Trace("DealConvListFunc exit!!!!!!");
}
