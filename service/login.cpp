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
  // The user and the folders just prepared for them become the session's
  // once the SDK accepts; a refused sign-in leaves the signed-in user's.
  platform::DataFolders& folders = platform::DataFolders::Instance();
  const uint64_t attempt = session_.Expect(
      std::move(userId), {folders.GetDbPath(), folders.GetFacePath(), folders.GetDownloadPath()});
  int ret = TIMLogin(id.c_str(), sig.c_str(), &CChatTools::TIMLoginFunc, this);
  if (ret != 0) {
    session_.Refused(attempt);
    platform::Trace("登录失败!!!");
    return false;
  }
  session_.Accepted(attempt);
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
  std::optional<uint64_t> attempt = self->session_.TakeResult();
  if (!attempt) {
    // Its sign-in was ended by a logout before the result came.
    platform::Trace("TIMLoginFunc: no sign-in awaits this result, dropped");
    return;
  }
  if (code != 0) {
    self->Window().ShowMessageBox(service::BoxOwner::kHostWindow, u"登录",
                                  u"IM 聊天功能登录失败,请尝试重新进入聊天功能！！！");
    service::InternalLogout(*self, false);
    platform::Trace("登陆 失败!!!  code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                    OrEmpty(json));
    return;
  }
  platform::Trace("Success!");
  if (std::optional<service::SessionStamp> session = self->session_.Accepted(*attempt)) {
    self->OnLoginSucceeded(*session);
  }
  platform::Trace("TIMLoginFunc exit!!!!!!");
}

void CChatTools::OnLoginSucceeded(service::SessionStamp session) {
  OpenDatabase(session);

  platform::Trace("获取已加入群组列表 开始!!!");
  LoadHostGroups(session);
  platform::Trace("获取已加入群组列表 结束!!!");

  RequestFriendList();
  RequestConvList();
  RequestJoinedGroupList();
  RequestPendencyList(kPendencyListChanged);
  RequestUserProfiles({UserId()});
  // Every sign-in: friend requests need confirmation, whatever was set elsewhere.
  ModifySelfAddPermission();
}

void CChatTools::OpenDatabase(service::SessionStamp session) {
  WString path = platform::JoinPath(session_.Folders().db, u"Chat.db");
  bool opened = false;
  // Opened only while the session is current: a logout in between keeps the
  // next user's store closed until their own sign-in opens it.
  session_.WhileCurrent(session, [&] {
    opened = store_.Open(platform::ToNativePath(path));
    if (opened) store_.CreateSchema();
  });
  if (!opened) platform::Trace("打开数据库失败: %s", platform::Utf16ToUtf8(path).c_str());
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
