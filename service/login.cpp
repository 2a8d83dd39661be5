// Sign-in, what follows a successful one, and the logout result.
#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/module_counters.h"
#include "service/sdk_text.h"
#include "store/chat_db.h"

using service::OrEmpty;

bool CChatTools::Login(WString userId, WString userSig) {
  std::string id = platform::Utf16ToUtf8(userId);
  std::string sig = platform::Utf16ToUtf8(userSig);
  platform::Trace("登录 开始!!! user id:%s ,user sig:%s", id.c_str(), sig.c_str());
  {
    std::lock_guard lock(cache_mutex_);
    user_id_ = std::move(userId);
  }
  int ret = TIMLogin(id.c_str(), sig.c_str(), &CChatTools::TIMLoginFunc, this);
  if (ret != 0) {
    platform::Trace("登录失败!!!");
    return false;
  }
  platform::Trace("登录 结束!!!");
  return true;
}

void CChatTools::TIMLoginFunc(int32_t code, const char* desc, const char* json, void* user) {
  platform::Trace("TIMLoginFunc enter!!!!!!");
  auto ucode = static_cast<unsigned>(code);
  platform::Trace("登陆回调信息  code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                  OrEmpty(json));
  CChatTools* self = From(user);
  if (self == nullptr) return;
  if (code != 0) {
    self->Window().ShowMessageBox(service::BoxOwner::kHostWindow, u"登录",
                                  u"IM 聊天功能登录失败,请尝试重新进入聊天功能！！！");
    service::InternalLogout(*self, false);
    platform::Trace("登陆 失败!!!  code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                    OrEmpty(json));
    return;
  }
  platform::Trace("Success!");
  self->OnLoginSucceeded();
  platform::Trace("TIMLoginFunc exit!!!!!!");
}

void CChatTools::OnLoginSucceeded() {
  OpenDatabase();

  platform::Trace("获取已加入群组列表 开始!!!");
  LoadHostGroups();
  platform::Trace("获取已加入群组列表 结束!!!");

  RequestFriendList();
  RequestConvList();
  RequestJoinedGroupList();
  RequestPendencyList(1);
  RequestUserProfiles({UserId()});
  // Every sign-in: friend requests need confirmation, whatever was set elsewhere.
  ModifySelfAddPermission();
}

void CChatTools::OpenDatabase() {
  WString path = platform::JoinPath(platform::DataFolders::Instance().GetDbPath(), u"Chat.db");
  CChatDb& db = CChatDb::Instance();
  if (!db.Open(platform::ToNativePath(path))) {
    platform::Trace("打开数据库失败: %s", platform::Utf16ToUtf8(path).c_str());
    return;
  }
  db.CreateSchema();
}

void CChatTools::TIMLogoutFunc(int32_t code, const char* desc, const char*, void*) {
  platform::Trace("TIMLogoutFunc enter!!!!!!");
  if (code == 0) {
    platform::Trace("Success!");
  } else {
    platform::Trace("Failure!code:%d desc:%s", code, OrEmpty(desc));
  }
  platform::Trace("TIMLogoutFunc exit!!!!!!");
}
