#pragma once
// The JSON objects every backend hands out alike (keys in im_sdk.h).
#include <json/json.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace imsdk {

struct ProfileFields {
  std::string id;
  std::string nick;
  int gender = 0;
  std::string face_url;
  std::string self_signature;
  int add_permission = 0;
};

Json::Value ProfileObject(const ProfileFields& fields);
// The short profile messages and tips carry.
Json::Value BriefProfileObject(const std::string& id, const std::string& nick,
                               const std::string& face_url);

// A conversation; `last` is its last message object, null when it has none.
Json::Value ConversationObject(const std::string& owner, int type, const std::string& id,
                               uint64_t unread, uint64_t active_time, const Json::Value& last);

// A page of friend requests.
Json::Value PendencyPage(uint64_t start_time, uint64_t unread, uint64_t next_seq,
                         const Json::Value& entries);

// A revoked message, as the revoke callback names it.
Json::Value RevokedLocator(const std::string& conv_id, int conv_type, uint64_t time,
                           uint64_t unique_id);

struct GroupFields {
  std::string id;
  std::string name;
  int type = 0;
  std::string face_url;
  std::string owner;
  size_t member_num = 0;
  uint64_t create_time = 0;
};

Json::Value GroupBaseObject(const GroupFields& fields);
// `role`: 1 member, 2 admin, 3 owner.
Json::Value GroupMemberObject(const std::string& id, uint64_t join_time, int role);

// A group tips element (without group changes). The backend looks up
// profiles and member objects: `member` answers null for someone who is not
// (or no longer) a member.
using ProfileLookup = std::function<Json::Value(const std::string& id)>;
using MemberLookup = std::function<Json::Value(const std::string& id)>;
Json::Value GroupTipElem(int tip_type, const GroupFields& group, const std::string& op_user,
                         const std::vector<std::string>& users, uint64_t time,
                         const ProfileLookup& profile, const MemberLookup& member);
// One entry of a tip's group changes (flag 1 name, 3 picture, 5 owner).
Json::Value GroupChangeInfo(int flag, const std::string& value);
Json::Value GroupReportElem(int report_type, const std::string& group_id, const std::string& name,
                            const std::string& op_user, const Json::Value& op_user_info);

}  // namespace imsdk
