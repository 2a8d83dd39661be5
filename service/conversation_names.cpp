// Names, types and pictures of conversations, and the list the host asks for.
#include <cstdio>
#include <filesystem>

#include "host/account_id.h"
#include "host/host_access.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/sdk_text.h"

namespace service {
namespace {

// The cached file of an avatar URL: a hash of the whole URL (URLs of
// different hosts may end alike) and the picture's own extension.
WString FaceFileName(const WString& url) {
  uint64_t hash = 1469598103934665603ULL;
  for (char16_t c : url) {
    hash ^= static_cast<uint64_t>(c);
    hash *= 1099511628211ULL;
  }
  WString extension = u".png";
  size_t dot = url.find_last_of(u'.');
  size_t slash = url.find_last_of(u"/\\");
  if (dot != WString::npos && (slash == WString::npos || dot > slash)) {
    WString candidate = platform::ToUpper(url.substr(dot));
    for (const WString known : {u".PNG", u".JPG", u".JPEG", u".GIF", u".BMP"}) {
      if (candidate == known) extension = url.substr(dot);
    }
  }
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
  return platform::Utf8ToUtf16(digits) + extension;
}

}  // namespace

WString FaceCachePath(const WString& faceFolder, const WString& faceUrl) {
  if (faceUrl.empty() || faceFolder.empty()) return {};
  return platform::JoinPath(faceFolder, FaceFileName(faceUrl));
}

bool FaceFileExists(const WString& path) {
  std::error_code error;
  return !path.empty() && std::filesystem::is_regular_file(platform::ToNativePath(path), error);
}

bool DownloadFace(const WString& faceUrl, const WString& path) {
  HostCloudService* cloud = host::AcquireCloudService("CChatTools::GetConvImage");
  if (cloud == nullptr) return false;
  if (!cloud->DownloadPicture(faceUrl.c_str(), path.c_str()) || !FaceFileExists(path)) {
    platform::Trace("下载图片失败!!!");
    return false;
  }
  return true;
}

ConversationFace LookUpConversationFace(const CChatTools& tools, uint32_t convType,
                                        const WString& convId) {
  ConversationFace face;
  if (convType == kConvGroup) {
    std::optional<GroupInfo> group = tools.FindGroup(convId);
    face.defaultImage = kGroupDefaultImage;
    if (group) {
      face.name = group->name;
      face.faceUrl = group->face_url;
    }
    return face;
  }
  face.defaultImage = kPersonDefaultImage;
  std::optional<FriendsList_Stru> found = tools.FindFriend(convId);
  if (found) {
    face.name = CChatTools::FriendDisplayName(*found);
    face.faceUrl = found->profile.face_url;
  }
  if (!found || face.name.empty()) {
    // A stranger, or a friend without remark and nickname: ask the host.
    std::optional<int32_t> accountId = host::AccountIdOfImUser(convId);
    HostCloudService* cloud = host::AcquireCloudService("CChatTools::GetConvImage");
    AccountInfo info;
    if (accountId && cloud != nullptr && cloud->GetAccountInfo(*accountId, info)) {
      if (face.name.empty()) face.name = info.displayName;
      if (face.faceUrl.empty()) face.faceUrl = info.avatarUrl;
    }
    if (face.name.empty()) face.name = convId;
  }
  return face;
}

}  // namespace service

WString CChatTools::GetConvNickName(uint32_t convType, const WString& convId) {
  platform::Trace("CChatTools::GetConvNickName!!!!!!");
  if (convType == kConvGroup) {
    std::optional<GroupInfo> group = FindGroup(convId);
    return group ? group->name : WString();
  }
  if (convType == kConvC2C) {
    std::optional<FriendsList_Stru> found = FindFriend(convId);
    return found ? FriendDisplayName(*found) : WString();
  }
  return {};
}

uint32_t CChatTools::GetCurrenConvType(const WString& convId) {
  platform::Trace("GetCurrenConvType enter!!!!!!");
  // Friends first: an id that is both counts as one-to-one.
  if (friends_.FindFriend(convId)) return kConvC2C;
  for (const CloudGroupInfo& group : groups_.HostGroups()) {
    if (group.imGroupId == convId) return kConvGroup;
  }
  // Groups the SDK reports count as well, so that a group keeps its type
  // while the host cannot be asked.
  if (groups_.IsJoined(convId)) return kConvGroup;
  platform::Trace("GetCurrenConvType exit!!!!!!");
  return kConvNone;
}

WString CChatTools::FacePathFor(const WString& faceUrl, const WString& fallback,
                                const WString& id) {
  return FacePathFor(faceUrl, fallback, id, ChatWindow());
}

WString CChatTools::FacePathFor(const WString& faceUrl, const WString& fallback, const WString& id,
                                platform::WindowHandle notify) {
  // The signed-in user's face folder and session; signed out there is none.
  return faces_.CachedOrFetch(CurrentFolders(), faceUrl, fallback, id, notify);
}

void CChatTools::GetConvImage(uint32_t convType, const WString& convId, WString& imagePath,
                              WString& name) {
  service::EnterExitTrace trace("GetConvImage");
  service::ConversationFace face = service::LookUpConversationFace(*this, convType, convId);
  name = face.name;
  imagePath = FacePathFor(face.faceUrl, face.defaultImage, convId);
}

void CChatTools::ProvideRecentConversations(std::vector<RecentConversationEntry>* list) {
  if (list == nullptr) return;
  for (const RecentConversation& recent : RecentConversations()) {
    uint32_t type = recent.info.conv_type;
    if (!IsChatConversation(type)) continue;
    RecentConversationEntry entry;
    WString image;
    GetConvImage(type, recent.info.conv_id, image, entry.displayName);
    entry.conversationId = recent.info.conv_id;
    entry.type = static_cast<int32_t>(type);
    list->push_back(std::move(entry));
  }
}
