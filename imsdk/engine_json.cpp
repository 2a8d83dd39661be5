// The JSON objects the engine hands out: messages, conversations, profiles,
// friends, pendencies, groups and members (keys documented in im_sdk.h).
#include "imsdk/api_objects.h"
#include "imsdk/engine.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"

namespace imsdk {

Json::Value Engine::BriefProfileLocked(const std::string& id) const {
  auto it = world_.accounts.find(id);
  if (it == world_.accounts.end()) return BriefProfileObject(id, "", "");
  return BriefProfileObject(id, it->second.nick, it->second.face_url);
}

GroupFields Engine::GroupFieldsOf(const Group& g) {
  return GroupFields{g.id, g.name, g.type, g.face_url, g.owner, g.members.size(), g.create_time};
}

Json::Value Engine::MessageValueLocked(const Message& msg, const std::string& viewer) const {
  Json::Value v(Json::objectValue);
  v["message_conv_id"] = msg.conv_id;
  v["message_conv_type"] = msg.conv_type;
  v["message_sender"] = msg.sender;
  v["message_client_time"] = Json::UInt64(msg.client_time);
  v["message_server_time"] = Json::UInt64(msg.server_time);
  v["message_is_from_self"] = msg.sender == viewer;
  v["message_platform"] = 0;
  v["message_is_read"] = msg.is_read;
  v["message_status"] = kTIMMsg_SendSucc;
  v["message_unique_id"] = Json::UInt64(msg.unique_id);
  v["message_sender_profile"] = BriefProfileLocked(msg.sender);
  v["message_elem_array"] = msg.elems;
  return v;
}

std::string Engine::ConversationJsonLocked(const std::string& owner, const ConvKey& key,
                                           const Conversation& conv) const {
  const Json::Value last =
      conv.messages.empty() ? Json::Value() : MessageValueLocked(conv.messages.back(), owner);
  return WriteJson(
      ConversationObject(owner, key.first, key.second, conv.unread, conv.active_time, last));
}

Json::Value Engine::ProfileValueLocked(const Account& a) const {
  return ProfileObject(
      ProfileFields{a.id, a.nick, a.gender, a.face_url, a.self_signature, a.add_permission});
}

Json::Value Engine::FriendValueLocked(const Friend& f) const {
  Json::Value v(Json::objectValue);
  v["friend_profile_identifier"] = f.id;
  Json::Value groups(Json::arrayValue);
  for (const auto& g : f.group_names) groups.append(g);
  v["friend_profile_group_name_array"] = groups;
  v["friend_profile_remark"] = f.remark;
  v["friend_profile_add_wording"] = f.add_wording;
  v["friend_profile_add_source"] = f.add_source;
  v["friend_profile_add_time"] = Json::UInt64(f.add_time);
  auto it = world_.accounts.find(f.id);
  v["friend_profile_user_profile"] =
      it == world_.accounts.end() ? BriefProfileLocked(f.id) : ProfileValueLocked(it->second);
  v["friend_profile_custom_string_array"] = Json::Value(Json::arrayValue);
  return v;
}

Json::Value Engine::PendencyValueLocked(const Pendency& p) const {
  Json::Value v(Json::objectValue);
  v["friend_add_pendency_info_type"] = p.type;
  v["friend_add_pendency_info_idenitifer"] = p.peer;
  auto it = world_.accounts.find(p.peer);
  v["friend_add_pendency_info_nick_name"] = it == world_.accounts.end() ? "" : it->second.nick;
  v["friend_add_pendency_info_add_time"] = Json::UInt64(p.add_time);
  v["friend_add_pendency_info_add_source"] = p.add_source;
  v["friend_add_pendency_info_add_wording"] = p.add_wording;
  return v;
}

Json::Value Engine::MemberValueLocked(const GroupMember& m) const {
  return GroupMemberObject(m.id, m.join_time, m.role);
}

Json::Value Engine::GroupValueLocked(const Group& g) const {
  return GroupBaseObject(GroupFieldsOf(g));
}

}  // namespace imsdk

namespace imsdk {

std::string Engine::MessageJsonLocked(const Message& msg, const std::string& viewer) const {
  return WriteJson(MessageValueLocked(msg, viewer));
}

std::string Engine::ProfileJsonLocked(const std::string& account) const {
  auto it = world_.accounts.find(account);
  return it == world_.accounts.end() ? "" : WriteJson(ProfileValueLocked(it->second));
}

}  // namespace imsdk
