#pragma once
// The embedded engine's world: what a server would hold for every account.
#include <json/json.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace imsdk {

// (conversation type, conversation id)
using ConvKey = std::pair<int, std::string>;

struct Friend {
  std::string id;
  std::string remark;
  std::vector<std::string> group_names;
  std::string add_wording;
  std::string add_source;
  uint64_t add_time = 0;
};

struct Pendency {
  uint64_t seq = 0;
  int type = 0;  // TIMPendencyType: 0 came in, 1 sent out
  std::string peer;
  uint64_t add_time = 0;
  std::string add_source;
  std::string add_wording;
};

struct Message {
  uint64_t unique_id = 0;
  int conv_type = 0;
  std::string conv_id;  // as the owner of the copy sees it
  std::string sender;
  uint64_t client_time = 0;
  uint64_t server_time = 0;
  bool is_read = false;
  Json::Value elems{Json::arrayValue};
};

struct Conversation {
  std::vector<Message> messages;  // oldest first
  uint64_t unread = 0;
  uint64_t active_time = 0;
  uint64_t order = 0;  // world sequence of the last activity, breaks time ties
};

struct AutoReply {
  bool enabled = false;
  int delay_ms = 0;
  std::string prefix;
};

struct Account {
  std::string id;
  std::string nick;
  std::string face_url;
  std::string self_signature;
  int gender = 0;
  int add_permission = 2;         // TIMAddPermission
  std::string signature;          // empty: any signature is accepted
  std::string expired_signature;  // refused at sign-in until a new one is set
  std::map<std::string, Friend> friends;
  std::vector<Pendency> pendencies;  // oldest first
  uint64_t pendency_seq = 0;
  uint64_t pendency_read_time = 0;
  std::map<ConvKey, Conversation> conversations;
  AutoReply auto_reply;
};

struct GroupMember {
  std::string id;
  uint64_t join_time = 0;
  int role = 1;  // 1 member, 3 owner
};

struct Group {
  std::string id;
  std::string name;
  std::string face_url;
  int type = 0;
  std::string owner;
  uint64_t create_time = 0;
  std::vector<GroupMember> members;
  bool HasMember(const std::string& account) const;
};

struct StoredFile {
  std::string name;
  std::shared_ptr<const std::string> bytes;
};

struct WorldData {
  std::map<std::string, Account> accounts;
  std::map<std::string, Group> groups;
  std::map<std::string, StoredFile> files;
  uint64_t next_message_id = 0;
  uint64_t next_group_number = 1;
  uint64_t next_file_number = 1;
  uint64_t activity = 0;
};

}  // namespace imsdk
