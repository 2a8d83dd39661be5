#include "imsdk/world_persistence.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "imsdk/json_util.h"

namespace imsdk {
namespace {

const char kFormat[] = "imsdk-world";
const int kVersion = 1;

const char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string ToBase64(const std::string& bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t n = static_cast<uint8_t>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) n |= static_cast<uint8_t>(bytes[i + 1]) << 8;
    if (i + 2 < bytes.size()) n |= static_cast<uint8_t>(bytes[i + 2]);
    out += kBase64[(n >> 18) & 63];
    out += kBase64[(n >> 12) & 63];
    out += i + 1 < bytes.size() ? kBase64[(n >> 6) & 63] : '=';
    out += i + 2 < bytes.size() ? kBase64[n & 63] : '=';
  }
  return out;
}

// Any malformed part of the file throws; LoadWorld turns it into the message.
struct Corrupt : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string FromBase64(const std::string& text) {
  if (text.size() % 4 != 0) throw Corrupt("bad file data");
  std::string out;
  for (size_t i = 0; i < text.size(); i += 4) {
    uint32_t n = 0;
    int pad = 0;
    for (int k = 0; k < 4; ++k) {
      char c = text[i + k];
      const char* p = c == '=' ? nullptr : std::strchr(kBase64, c);
      if (c == '=') {
        ++pad;
      } else if (p == nullptr || c == '\0' || pad > 0) {
        throw Corrupt("bad file data");
      }
      n = (n << 6) | (p == nullptr ? 0 : static_cast<uint32_t>(p - kBase64));
    }
    out += static_cast<char>((n >> 16) & 255);
    if (pad < 2) out += static_cast<char>((n >> 8) & 255);
    if (pad < 1) out += static_cast<char>(n & 255);
  }
  return out;
}

// Typed reads that throw Corrupt naming the key.
const Json::Value& Need(const Json::Value& v, const char* key, bool (Json::Value::*is)() const) {
  if (!v.isObject()) throw Corrupt(std::string("not an object around \"") + key + "\"");
  const Json::Value& m = v[key];
  if (!(m.*is)()) throw Corrupt(std::string("bad or missing \"") + key + "\"");
  return m;
}
std::string Str(const Json::Value& v, const char* key) {
  return Need(v, key, &Json::Value::isString).asString();
}
uint64_t U64(const Json::Value& v, const char* key) {
  return Need(v, key, &Json::Value::isUInt64).asUInt64();
}
int Int(const Json::Value& v, const char* key) {
  return Need(v, key, &Json::Value::isInt).asInt();
}
bool Bool(const Json::Value& v, const char* key) {
  return Need(v, key, &Json::Value::isBool).asBool();
}
const Json::Value& Arr(const Json::Value& v, const char* key) {
  return Need(v, key, &Json::Value::isArray);
}

Json::Value Save(const Message& m) {
  Json::Value v;
  v["unique_id"] = Json::UInt64(m.unique_id);
  v["conv_type"] = m.conv_type;
  v["conv_id"] = m.conv_id;
  v["sender"] = m.sender;
  v["client_time"] = Json::UInt64(m.client_time);
  v["server_time"] = Json::UInt64(m.server_time);
  v["is_read"] = m.is_read;
  v["elems"] = m.elems;
  return v;
}

Message LoadMessage(const Json::Value& v) {
  Message m;
  m.unique_id = U64(v, "unique_id");
  m.conv_type = Int(v, "conv_type");
  m.conv_id = Str(v, "conv_id");
  m.sender = Str(v, "sender");
  m.client_time = U64(v, "client_time");
  m.server_time = U64(v, "server_time");
  m.is_read = Bool(v, "is_read");
  m.elems = Arr(v, "elems");
  return m;
}

Json::Value SaveAccount(const Account& a) {
  Json::Value v;
  v["id"] = a.id;
  v["nick"] = a.nick;
  v["face_url"] = a.face_url;
  v["self_signature"] = a.self_signature;
  v["gender"] = a.gender;
  v["add_permission"] = a.add_permission;
  v["signature"] = a.signature;
  v["expired_signature"] = a.expired_signature;
  v["pendency_seq"] = Json::UInt64(a.pendency_seq);
  v["pendency_read_time"] = Json::UInt64(a.pendency_read_time);
  v["auto_reply"]["enabled"] = a.auto_reply.enabled;
  v["auto_reply"]["delay_ms"] = a.auto_reply.delay_ms;
  v["auto_reply"]["prefix"] = a.auto_reply.prefix;
  Json::Value& friends = v["friends"] = Json::Value(Json::arrayValue);
  for (const auto& [id, f] : a.friends) {
    Json::Value fv;
    fv["id"] = f.id;
    fv["remark"] = f.remark;
    fv["group_names"] = Json::Value(Json::arrayValue);
    for (const auto& g : f.group_names) fv["group_names"].append(g);
    fv["add_wording"] = f.add_wording;
    fv["add_source"] = f.add_source;
    fv["add_time"] = Json::UInt64(f.add_time);
    friends.append(fv);
  }
  Json::Value& pendencies = v["pendencies"] = Json::Value(Json::arrayValue);
  for (const auto& p : a.pendencies) {
    Json::Value pv;
    pv["seq"] = Json::UInt64(p.seq);
    pv["type"] = p.type;
    pv["peer"] = p.peer;
    pv["add_time"] = Json::UInt64(p.add_time);
    pv["add_source"] = p.add_source;
    pv["add_wording"] = p.add_wording;
    pendencies.append(pv);
  }
  Json::Value& convs = v["conversations"] = Json::Value(Json::arrayValue);
  for (const auto& [key, c] : a.conversations) {
    Json::Value cv;
    cv["type"] = key.first;
    cv["id"] = key.second;
    cv["unread"] = Json::UInt64(c.unread);
    cv["active_time"] = Json::UInt64(c.active_time);
    cv["order"] = Json::UInt64(c.order);
    cv["messages"] = Json::Value(Json::arrayValue);
    for (const auto& m : c.messages) cv["messages"].append(Save(m));
    convs.append(cv);
  }
  return v;
}

Account LoadAccount(const Json::Value& v) {
  Account a;
  a.id = Str(v, "id");
  a.nick = Str(v, "nick");
  a.face_url = Str(v, "face_url");
  a.self_signature = Str(v, "self_signature");
  a.gender = Int(v, "gender");
  a.add_permission = Int(v, "add_permission");
  a.signature = Str(v, "signature");
  a.expired_signature = Str(v, "expired_signature");
  a.pendency_seq = U64(v, "pendency_seq");
  a.pendency_read_time = U64(v, "pendency_read_time");
  const Json::Value& reply = Need(v, "auto_reply", &Json::Value::isObject);
  a.auto_reply = AutoReply{Bool(reply, "enabled"), Int(reply, "delay_ms"), Str(reply, "prefix")};
  for (const auto& fv : Arr(v, "friends")) {
    Friend f;
    f.id = Str(fv, "id");
    f.remark = Str(fv, "remark");
    for (const auto& g : Arr(fv, "group_names")) {
      if (!g.isString()) throw Corrupt("bad friend group name");
      f.group_names.push_back(g.asString());
    }
    f.add_wording = Str(fv, "add_wording");
    f.add_source = Str(fv, "add_source");
    f.add_time = U64(fv, "add_time");
    a.friends[f.id] = f;
  }
  for (const auto& pv : Arr(v, "pendencies")) {
    a.pendencies.push_back(Pendency{U64(pv, "seq"), Int(pv, "type"), Str(pv, "peer"),
                                    U64(pv, "add_time"), Str(pv, "add_source"),
                                    Str(pv, "add_wording")});
  }
  for (const auto& cv : Arr(v, "conversations")) {
    Conversation c;
    c.unread = U64(cv, "unread");
    c.active_time = U64(cv, "active_time");
    c.order = U64(cv, "order");
    for (const auto& mv : Arr(cv, "messages")) c.messages.push_back(LoadMessage(mv));
    a.conversations[{Int(cv, "type"), Str(cv, "id")}] = std::move(c);
  }
  return a;
}

}  // namespace

std::string SaveWorld(const WorldData& world, const std::string& path) {
  Json::Value root;
  root["format"] = kFormat;
  root["version"] = kVersion;
  root["next_message_id"] = Json::UInt64(world.next_message_id);
  root["next_group_number"] = Json::UInt64(world.next_group_number);
  root["next_file_number"] = Json::UInt64(world.next_file_number);
  root["activity"] = Json::UInt64(world.activity);
  Json::Value& accounts = root["accounts"] = Json::Value(Json::arrayValue);
  for (const auto& [id, a] : world.accounts) accounts.append(SaveAccount(a));
  Json::Value& groups = root["groups"] = Json::Value(Json::arrayValue);
  for (const auto& [id, g] : world.groups) {
    Json::Value gv;
    gv["id"] = g.id;
    gv["name"] = g.name;
    gv["face_url"] = g.face_url;
    gv["type"] = g.type;
    gv["owner"] = g.owner;
    gv["create_time"] = Json::UInt64(g.create_time);
    gv["members"] = Json::Value(Json::arrayValue);
    for (const auto& m : g.members) {
      Json::Value mv;
      mv["id"] = m.id;
      mv["join_time"] = Json::UInt64(m.join_time);
      mv["role"] = m.role;
      gv["members"].append(mv);
    }
    groups.append(gv);
  }
  Json::Value& files = root["files"] = Json::Value(Json::arrayValue);
  for (const auto& [id, f] : world.files) {
    Json::Value fv;
    fv["id"] = id;
    fv["name"] = f.name;
    fv["data"] = ToBase64(*f.bytes);
    files.append(fv);
  }
  const std::string temp = path + ".tmp";
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    out << WriteJson(root);
    out.flush();
    if (!out) {
      std::remove(temp.c_str());
      return "cannot write the world file " + temp;
    }
  }
  if (std::rename(temp.c_str(), path.c_str()) != 0) {
    std::remove(temp.c_str());
    return "cannot replace the world file " + path;
  }
  return "";
}

std::string LoadWorld(const std::string& path, WorldData* out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return "cannot open the world file " + path;
  std::stringstream text;
  text << in.rdbuf();
  // The engine's own file holds a whole world, far more than one event.
  constexpr platform::JsonLimits kWorldFileLimits{64u << 20, 64, 4'000'000};
  Json::Value root;
  if (!ParseJson(text.str(), &root, kWorldFileLimits) || !root.isObject()) {
    return "the world file " + path + " is corrupt: not JSON";
  }
  try {
    if (Str(root, "format") != kFormat) throw Corrupt("not a world file");
    if (Int(root, "version") != kVersion) throw Corrupt("unknown version");
    WorldData world;
    world.next_message_id = U64(root, "next_message_id");
    world.next_group_number = U64(root, "next_group_number");
    world.next_file_number = U64(root, "next_file_number");
    world.activity = U64(root, "activity");
    for (const auto& av : Arr(root, "accounts")) {
      Account a = LoadAccount(av);
      std::string id = a.id;
      world.accounts[id] = std::move(a);
    }
    for (const auto& gv : Arr(root, "groups")) {
      Group g;
      g.id = Str(gv, "id");
      g.name = Str(gv, "name");
      g.face_url = Str(gv, "face_url");
      g.type = Int(gv, "type");
      g.owner = Str(gv, "owner");
      g.create_time = U64(gv, "create_time");
      for (const auto& mv : Arr(gv, "members")) {
        g.members.push_back(GroupMember{Str(mv, "id"), U64(mv, "join_time"), Int(mv, "role")});
      }
      world.groups[g.id] = std::move(g);
    }
    for (const auto& fv : Arr(root, "files")) {
      world.files[Str(fv, "id")] = StoredFile{
          Str(fv, "name"), std::make_shared<const std::string>(FromBase64(Str(fv, "data")))};
    }
    *out = std::move(world);
  } catch (const Corrupt& e) {
    return "the world file " + path + " is corrupt: " + e.what();
  } catch (const std::exception& e) {
    return "the world file " + path + " is corrupt: " + e.what();
  }
  return "";
}

}  // namespace imsdk
