#pragma once
// One element of an IM message, as a single flat record: every kind's fields
// side by side, only those of its own kind filled. Fields that several kinds
// read from keys of the same meaning and type (file_id, business_id, url,
// group_id, group_name, op_user, op_user_info, change_type) are shared.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/strings.h"
#include "records/drawing_msg.h"

// elem_type values as the SDK numbers them, plus the module's local notice.
enum ElemType : int32_t {
  kElemLocalNotice = -1,  // a line the module adds itself; `text` holds it
  kElemText = 0,
  kElemImage = 1,
  kElemSound = 2,
  kElemCustom = 3,
  kElemFile = 4,
  kElemGroupTips = 5,
  kElemFace = 6,
  kElemLocation = 7,
  kElemGroupReport = 8,
  kElemVideo = 9,
  kElemFriendChange = 10,
  kElemProfileChange = 11,
};

// Send state kept on the first element of a message being sent.
enum SendStatus : uint32_t { kSendNone = 0, kSending = 1, kSent = 2, kSendFailed = 3 };

// group_tips_elem_tip_type of a group-information change.
inline constexpr int32_t kGroupTipInfoChanged = 6;
// GroupTipGroupChangeInfoStru::flag values the module acts on.
inline constexpr uint32_t kGroupChangeName = 1;
inline constexpr uint32_t kGroupChangeOwner = 5;

struct UserProfileBrief {
  WString nick_name;
  WString face_url;
  bool operator==(const UserProfileBrief&) const = default;
};

struct GroupTipGroupChangeInfoStru {
  uint32_t flag = 0;
  WString value;  // the new name or the new owner's account
  WString key;
  bool operator==(const GroupTipGroupChangeInfoStru&) const = default;
};

struct GroupTipMemberChangeInfo {
  WString identifier;
  uint32_t shutup_time = 0;
  bool operator==(const GroupTipMemberChangeInfo&) const = default;
};

// Changed values of a profile-change element. Location, language, birthday,
// level and role are read (so that a wrong type is noticed) but not kept.
struct UserProfileItem {
  WString nick_name;
  uint32_t gender = 0;
  WString face_url;
  WString self_signature;
  bool operator==(const UserProfileItem&) const = default;
};

struct ElemStru {
  // Context copied from the owning message.
  WString conv_id;
  bool is_from_self = false;
  uint32_t platform = 0;
  uint32_t send_status = kSendNone;

  int32_t elem_type = kElemText;

  // text (0) and local notice (-1)
  WString text;

  // image (1)
  WString orig_path;
  WString orig_id;
  WString thumb_id;
  WString large_id;
  int32_t large_pic_height = 0;
  int32_t large_pic_width = 0;
  WString orig_url;
  WString thumb_url;
  WString large_url;
  int32_t task_id = 0;

  // sound (2); file_id, business_id and url are shared with file, and
  // business_id with video
  int32_t file_time = 0;
  WString file_id;
  int32_t business_id = 0;
  WString url;

  // custom (3)
  WString custom_data;  // the payload exactly as received
  DrawingMsgStru drawing;

  // file (4)
  WString file_path;
  WString file_name;
  int32_t file_size = 0;  // signed 32-bit: a file over 2 GiB reads negative
  int32_t download_flag = 0;

  // group tips (5); group_id, group_name, op_user and op_user_info are shared
  // with group report
  int32_t tip_type = 0;  // signed here, unsigned in GroupTipsEvent
  WString op_user;
  WString group_name;
  WString group_id;
  uint32_t time = 0;
  std::vector<WString> users;
  std::vector<GroupTipGroupChangeInfoStru> group_changes;
  std::vector<GroupTipMemberChangeInfo> member_changes;
  UserProfileBrief op_user_info;
  std::vector<UserProfileBrief> changed_users;

  // group report (8)
  uint32_t report_type = 0;

  // video (9); business_id shared with sound and file
  WString video_id;
  int32_t video_download_flag = 0;
  WString video_url;
  WString image_id;
  int32_t image_download_flag = 0;
  WString image_url;
  uint32_t video_task_id = 0;  // unsigned, unlike the image's task_id

  // friend change (10) and profile change (11)
  uint32_t change_type = 0;
  // profile change (11)
  WString from_identifier;
  UserProfileItem profile_item;

  // Download parameters (UTF-8 styled JSON), one per downloadable file, built
  // while parsing; what the SDK's element download takes.
  std::string orig_download_param;   // image: full-size picture
  std::string thumb_download_param;  // image: thumbnail
  std::string large_download_param;  // image: large picture
  std::string download_param;        // sound, file, and the video itself
  std::string image_download_param;  // video: cover picture
  bool operator==(const ElemStru&) const = default;
};
