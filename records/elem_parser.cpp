#include "records/elem_parser.h"

#include "platform/trace.h"
#include "records/download_param.h"
#include "records/group_tips_reader.h"
#include "records/json_reader.h"

namespace records {
namespace {

void ReadImage(const Json::Value& json, ElemStru& e) {
  Read(json, "image_elem_orig_path", e.orig_path);
  Read(json, "image_elem_orig_id", e.orig_id);
  Read(json, "image_elem_thumb_id", e.thumb_id);
  Read(json, "image_elem_large_id", e.large_id);
  Read(json, "image_elem_large_pic_height", e.large_pic_height);
  Read(json, "image_elem_large_pic_width", e.large_pic_width);
  Read(json, "image_elem_orig_url", e.orig_url);
  Read(json, "image_elem_thumb_url", e.thumb_url);
  Read(json, "image_elem_large_url", e.large_url);
  Read(json, "image_elem_task_id", e.task_id);
}

void ReadSound(const Json::Value& json, ElemStru& e) {
  Read(json, "sound_elem_file_time", e.file_time);
  Read(json, "sound_elem_file_id", e.file_id);
  Read(json, "sound_elem_business_id", e.business_id);
  Read(json, "sound_elem_url", e.url);
}

void ReadCustom(const Json::Value& json, ElemStru& e, const ReceiveOptions& options) {
  std::string data;
  Read(json, "custom_elem_data", data);
  e.custom_data = platform::Utf8ToUtf16(data);
  platform::Trace("ParseCustomElemJson:%s", data.c_str());
  ReceiveDrawingMsg(data, e.conv_id, options, e.drawing);
}

void ReadFile(const Json::Value& json, ElemStru& e) {
  Read(json, "file_elem_file_path", e.file_path);
  Read(json, "file_elem_file_name", e.file_name);
  Read(json, "file_elem_file_size", e.file_size);
  Read(json, "file_elem_file_id", e.file_id);
  Read(json, "file_elem_business_id", e.business_id);
  Read(json, "file_elem_download_flag", e.download_flag);
  Read(json, "file_elem_url", e.url);
}

void ReadGroupReport(const Json::Value& json, ElemStru& e) {
  Read(json, "group_report_elem_report_type", e.report_type);
  Read(json, "group_report_elem_group_id", e.group_id);
  Read(json, "group_report_elem_group_name", e.group_name);
  Read(json, "group_report_elem_op_user", e.op_user);
  ReadUserProfileBrief(Member(json, "group_report_elem_op_user_info"), e.op_user_info);
}

void ReadVideo(const Json::Value& json, ElemStru& e) {
  Read(json, "video_elem_video_id", e.video_id);
  Read(json, "video_elem_business_id", e.business_id);
  Read(json, "video_elem_video_download_flag", e.video_download_flag);
  Read(json, "video_elem_video_url", e.video_url);
  Read(json, "video_elem_image_id", e.image_id);
  Read(json, "video_elem_image_download_flag", e.image_download_flag);
  Read(json, "video_elem_image_url", e.image_url);
  Read(json, "video_elem_task_id", e.video_task_id);
}

void ReadProfileChange(const Json::Value& json, ElemStru& e) {
  Read(json, "profile_change_elem_change_type", e.change_type);
  // The SDK's key is spelled so.
  Read(json, "profile_change_elem_from_identifer", e.from_identifier);
  ParseUserProfileItem(Member(json, "profile_change_elem_user_profile_item"), e.profile_item);
}

}  // namespace

void ParseElem(const Json::Value& json, ElemStru& e, const ReceiveOptions& options) {
  Read(json, "elem_type", e.elem_type);
  switch (e.elem_type) {
    case kElemText:
      Read(json, "text_elem_content", e.text);
      break;
    case kElemImage:
      ReadImage(json, e);
      break;
    case kElemSound:
      ReadSound(json, e);
      break;
    case kElemCustom:
      ReadCustom(json, e, options);
      break;
    case kElemFile:
      ReadFile(json, e);
      break;
    case kElemGroupTips:
      ReadGroupTipsFields(json, e);
      break;
    case kElemGroupReport:
      ReadGroupReport(json, e);
      break;
    case kElemVideo:
      ReadVideo(json, e);
      break;
    case kElemFriendChange:
      Read(json, "friend_change_elem_change_type", e.change_type);
      break;
    case kElemProfileChange:
      ReadProfileChange(json, e);
      break;
    default:  // face, location and kinds the module does not know: the kind only
      break;
  }
  FillDownloadParams(e);
}

bool IsKeptElement(const ElemStru& elem) {
  if (elem.elem_type != kElemCustom) return true;
  return elem.drawing.msgType == kDrawingMsgFile || elem.drawing.msgType == kDrawingMsgSharedChat;
}

bool ParseUserProfileItem(const Json::Value& json, UserProfileItem& out) {
  return GuardRecord("UserProfileItem", [&] {
    Read(json, "user_profile_item_nick_name", out.nick_name);
    Read(json, "user_profile_item_gender", out.gender);
    Read(json, "user_profile_item_face_url", out.face_url);
    Read(json, "user_profile_item_self_signature", out.self_signature);
    // Read as numbers and dropped: the module has no use for them here.
    uint32_t dropped = 0;
    for (const char* key :
         {"user_profile_item_location", "user_profile_item_language", "user_profile_item_birthday",
          "user_profile_item_level", "user_profile_item_role"}) {
      Read(json, key, dropped);
    }
  });
}

}  // namespace records
