// Conversations, sending and receiving, history, read reports, files.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "imsdk/api_objects.h"
#include "imsdk/engine.h"
#include "imsdk/failure_queue.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/outgoing_elems.h"

namespace imsdk {
namespace {

std::string BaseName(const std::string& path) {
  size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Reads a whole file; false when it cannot be read or is too large.
int ReadFile(const std::string& path, std::string* bytes) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) return TIM_ERR_FILE;
  std::streamoff size = in.tellg();
  if (size < 0) return TIM_ERR_FILE;
  if (size > TIM_MAX_FILE_SIZE) return TIM_ERR_FILE_TOO_LARGE;
  bytes->resize(static_cast<size_t>(size));
  in.seekg(0);
  if (size > 0 && !in.read(bytes->data(), size)) return TIM_ERR_FILE;
  return TIM_SUCC;
}

const char* kFileUrlPrefix = "imsdk://files/";

// The receivers get the element without the sender's local paths.
Json::Value WithoutLocalPaths(Json::Value elems) {
  for (auto& elem : elems) {
    if (elem.isMember("image_elem_orig_path")) elem["image_elem_orig_path"] = "";
    if (elem.isMember("file_elem_file_path")) elem["file_elem_file_path"] = "";
  }
  return elems;
}

}  // namespace

int Engine::UploadElemsLocked(const std::string& actor, Json::Value* elems,
                              std::vector<std::pair<uint32_t, uint64_t>>* uploads) {
  (void)actor;
  for (Json::ArrayIndex i = 0; i < elems->size(); ++i) {
    Json::Value& elem = (*elems)[i];
    int type = elem["elem_type"].asInt();
    if (type != kTIMElem_Image && type != kTIMElem_File) continue;
    const char* path_key = type == kTIMElem_Image ? "image_elem_orig_path" : "file_elem_file_path";
    std::string bytes;
    std::string path = elem[path_key].asString();
    if (int code = ReadFile(path, &bytes)) return code;
    uint64_t number = world_.next_file_number++;
    std::string id = (type == kTIMElem_Image ? "img-" : "file-") + std::to_string(number);
    std::string url = kFileUrlPrefix + id;
    uploads->push_back({i, bytes.size()});
    if (type == kTIMElem_Image) {
      for (const char* key : {"image_elem_orig_id", "image_elem_thumb_id", "image_elem_large_id"}) {
        elem[key] = id;
      }
      for (const char* key :
           {"image_elem_orig_url", "image_elem_thumb_url", "image_elem_large_url"}) {
        elem[key] = url;
      }
      elem["image_elem_large_pic_width"] = 0;
      elem["image_elem_large_pic_height"] = 0;
      elem["image_elem_task_id"] = static_cast<Json::Int>(number & 0x7fffffff);
    } else {
      if (!elem.isMember("file_elem_file_name") || elem["file_elem_file_name"].asString().empty()) {
        elem["file_elem_file_name"] = BaseName(path);
      }
      elem["file_elem_file_size"] = static_cast<Json::Int>(bytes.size());
      elem["file_elem_file_id"] = id;
      elem["file_elem_business_id"] = 0;
      elem["file_elem_download_flag"] = 2;
      elem["file_elem_url"] = url;
    }
    world_.files[id] =
        StoredFile{BaseName(path), std::make_shared<const std::string>(std::move(bytes))};
  }
  return TIM_SUCC;
}

void Engine::DeliverLocked(const std::string& owner, const ConvKey& key, Message msg,
                           bool from_owner) {
  Account* account = FindAccountLocked(owner);
  if (account == nullptr) return;
  Conversation& conv = account->conversations[key];
  msg.conv_id = key.second;
  msg.is_read = from_owner;
  if (!from_owner) ++conv.unread;
  conv.active_time = msg.server_time;
  conv.order = ++world_.activity;
  if (!from_owner) {
    Json::Value array(Json::arrayValue);
    array.append(MessageValueLocked(msg, owner));
    NotifyLocked(owner, Event{EventKind::kNewMessages, WriteJson(array)});
    ScheduleAutoReplyLocked(owner, key, msg);
  }
  conv.messages.push_back(std::move(msg));
}

int Engine::SendAsLocked(const std::string& actor, int type, const std::string& conv_id,
                         const Json::Value& elems, Message* stored) {
  Account* sender = FindAccountLocked(actor);
  if (sender == nullptr) return TIM_ERR_ACCOUNT_NOT_FOUND;
  std::vector<std::string> receivers;
  if (type == kTIMConv_C2C) {
    Account* peer = FindAccountLocked(conv_id);
    if (peer == nullptr) return TIM_ERR_ACCOUNT_NOT_FOUND;
    const bool peer_lists_me = peer->friends.count(actor) > 0;
    if (!peer_lists_me && peer->add_permission != kTIMAddPermission_AllowAny && peer->id != actor) {
      return sender->friends.count(conv_id) > 0 ? TIM_ERR_FRIEND_REMOVED_YOU
                                                : TIM_ERR_NOT_FRIEND_VERIFY;
    }
    if (peer->id != actor) receivers.push_back(peer->id);
  } else {
    auto group = world_.groups.find(conv_id);
    if (group == world_.groups.end()) return TIM_ERR_GROUP_NOT_FOUND;
    if (!group->second.HasMember(actor)) return TIM_ERR_NOT_GROUP_MEMBER;
    for (const auto& m : group->second.members) {
      if (m.id != actor) receivers.push_back(m.id);
    }
  }
  Json::Value uploaded = elems;
  std::vector<std::pair<uint32_t, uint64_t>> uploads;
  if (int code = UploadElemsLocked(actor, &uploaded, &uploads)) return code;

  Message msg;
  msg.unique_id = NewMessageIdLocked();
  msg.conv_type = type;
  msg.sender = actor;
  msg.client_time = msg.server_time = NowSeconds();
  msg.elems = uploaded;
  if (!uploads.empty()) {
    std::string json = WriteJson(MessageValueLocked(msg, actor));
    for (const auto& [index, total] : uploads) {
      // Two steps are enough for a caller to see progress before the result.
      NotifyLocked(actor, Event{EventKind::kUploadProgress, json, index,
                                static_cast<int64_t>(total / 2), static_cast<int64_t>(total)});
      NotifyLocked(actor, Event{EventKind::kUploadProgress, json, index,
                                static_cast<int64_t>(total), static_cast<int64_t>(total)});
    }
  }
  *stored = msg;
  stored->conv_id = conv_id;
  stored->is_read = true;
  DeliverLocked(actor, {type, conv_id}, msg, true);
  Message copy = msg;
  copy.elems = WithoutLocalPaths(msg.elems);
  for (const auto& receiver : receivers) {
    DeliverLocked(receiver, {type, type == kTIMConv_C2C ? actor : conv_id}, copy, false);
  }
  ChangedLocked();
  return TIM_SUCC;
}

// What the scripted peer answers to: a text, or the content of a message of
// the shared chat on a drawing (a custom element whose payload has msgType 2).
std::string Engine::ReplyableText(const Json::Value& elem) {
  if (elem["elem_type"].asInt() == kTIMElem_Text) return elem["text_elem_content"].asString();
  if (elem["elem_type"].asInt() != kTIMElem_Custom) return {};
  Json::Value payload;
  if (!ParseJson(elem["custom_elem_data"].asString(), &payload) || !payload.isObject()) return {};
  const Json::Value kind = payload.get("msgType", Json::Value());
  const Json::Value data = payload.get("data", Json::Value());
  if (!kind.isIntegral() || kind.asLargestInt() != 2 || !data.isObject()) return {};
  const Json::Value content = data.get("content", Json::Value());
  return content.isString() ? content.asString() : "";
}

void Engine::ScheduleAutoReplyLocked(const std::string& responder, const ConvKey& key,
                                     const Message& received) {
  Account* account = FindAccountLocked(responder);
  if (account == nullptr || !account->auto_reply.enabled) return;
  Account* sender = FindAccountLocked(received.sender);
  if (sender == nullptr || sender->auto_reply.enabled) return;  // no endless dialogues
  std::string text;
  for (const auto& elem : received.elems) text += ReplyableText(elem);
  if (text.empty()) return;
  Json::Value elems(Json::arrayValue);
  Json::Value elem;
  elem["elem_type"] = kTIMElem_Text;
  elem["text_elem_content"] = account->auto_reply.prefix + text;
  elems.append(elem);
  auto reply = [this, responder, key, elems] {
    std::lock_guard lock(mutex_);
    Message ignored;
    SendAsLocked(responder, key.first, key.second, elems, &ignored);
  };
  if (sink_ != nullptr) {
    sink_->RunLater(std::chrono::milliseconds(account->auto_reply.delay_ms), reply);
  }
}

int Engine::SendMessage(const std::string& id, int type, const Json::Value& msg, ResultFn done) {
  const Json::Value& elems = msg["message_elem_array"];
  if (int code = CheckOutgoingElems(elems)) return code;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  auto failed = [&](int code, const char* desc) {
    done(code, desc, WriteJson(FailedSendEcho(msg, id, type, signed_in_)));
  };
  if (int code = FailureQueue::Results().Take("TIMMsgSendNewMsg")) {
    failed(code, "queued failure");
    return TIM_SUCC;
  }
  if (!network_up_) {
    failed(TIM_ERR_NETWORK, "network is down");
    return TIM_SUCC;
  }
  Message stored;
  std::string self = signed_in_;
  int code = SendAsLocked(self, type, id, elems, &stored);
  if (code != TIM_SUCC) {
    failed(code, "send failed");
    return TIM_SUCC;
  }
  done(TIM_SUCC, "", WriteJson(MessageValueLocked(stored, self)));
  return TIM_SUCC;
}

int Engine::GetConvList(ResultFn done) {
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMConvGetConvList", done)) return TIM_SUCC;
  const Account& self = SelfLocked();
  std::vector<std::pair<const ConvKey*, const Conversation*>> convs;
  for (const auto& [key, conv] : self.conversations) convs.push_back({&key, &conv});
  std::sort(convs.begin(), convs.end(),
            [](const auto& a, const auto& b) { return a.second->order > b.second->order; });
  std::string json = "[";
  for (size_t i = 0; i < convs.size(); ++i) {
    if (i > 0) json += ",";
    json += ConversationJsonLocked(self.id, *convs[i].first, *convs[i].second);
  }
  json += "]";
  done(TIM_SUCC, "", json);
  return TIM_SUCC;
}

int Engine::CreateConv(const std::string& id, int type, ResultFn done) {
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMConvCreate", done)) return TIM_SUCC;
  Account& self = SelfLocked();
  ConvKey key{type, id};
  auto [it, created] = self.conversations.try_emplace(key);
  if (created) {
    it->second.active_time = NowSeconds();
    it->second.order = ++world_.activity;
    ChangedLocked();
  }
  done(TIM_SUCC, "", ConversationJsonLocked(self.id, key, it->second));
  return TIM_SUCC;
}

int Engine::DeleteConv(const std::string& id, int type, ResultFn done) {
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  Account& self = SelfLocked();
  auto it = self.conversations.find({type, id});
  if (it == self.conversations.end()) return TIM_ERR_CONV_NOT_FOUND;
  if (QueuedFailureLocked("TIMConvDelete", done)) return TIM_SUCC;
  self.conversations.erase(it);
  ChangedLocked();
  done(TIM_SUCC, "", "");
  return TIM_SUCC;
}

int Engine::GetMessages(const std::string& id, int type, const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const Json::Value& last = reader.Object("msg_getmsglist_param_last_msg");
  int64_t count = reader.Int64("msg_getmsglist_param_count", 20);
  bool forward = reader.Bool("msg_getmsglist_param_is_forward", false);
  reader.Bool("msg_getmsglist_param_is_remble", true);
  ParamReader last_reader(last);
  uint64_t anchor = last_reader.UInt64("message_unique_id", 0);
  if (!reader.ok() || !last_reader.ok()) return TIM_ERR_INVALID_JSON;
  if (count < 1 || count > 1000) return TIM_ERR_INVALID_PARAM;

  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  const Account& self = SelfLocked();
  auto it = self.conversations.find({type, id});
  if (it == self.conversations.end()) return TIM_ERR_CONV_NOT_FOUND;
  if (QueuedFailureLocked("TIMMsgGetMsgList", done)) return TIM_SUCC;
  const auto& messages = it->second.messages;
  // Position of the anchor; the page starts next to it.
  int64_t size = static_cast<int64_t>(messages.size());
  int64_t start = forward ? 0 : size - 1;
  if (anchor != 0) {
    auto pos = std::find_if(messages.begin(), messages.end(),
                            [anchor](const Message& m) { return m.unique_id == anchor; });
    int64_t index = pos == messages.end() ? -1 : pos - messages.begin();
    start = index < 0 ? (forward ? size : -1) : (forward ? index + 1 : index - 1);
  }
  Json::Value page(Json::arrayValue);
  for (int64_t i = start; i >= 0 && i < size && static_cast<int64_t>(page.size()) < count;
       i += forward ? 1 : -1) {
    page.append(MessageValueLocked(messages[static_cast<size_t>(i)], self.id));
  }
  done(TIM_SUCC, "", WriteJson(page));
  return TIM_SUCC;
}

void Engine::MarkReadLocked(const std::string& account_id, const ConvKey& key, uint64_t up_to_id) {
  Account* account = FindAccountLocked(account_id);
  if (account == nullptr) return;
  auto it = account->conversations.find(key);
  if (it == account->conversations.end()) return;
  Conversation& conv = it->second;
  uint64_t last_time = 0;
  bool reached = up_to_id == 0;
  // Everything up to the given message (all when none) becomes read.
  size_t limit = conv.messages.size();
  if (!reached) {
    for (size_t i = 0; i < conv.messages.size(); ++i) {
      if (conv.messages[i].unique_id == up_to_id) {
        limit = i + 1;
        reached = true;
        break;
      }
    }
    if (!reached) return;
  }
  for (size_t i = 0; i < limit; ++i) {
    conv.messages[i].is_read = true;
    last_time = conv.messages[i].server_time;
  }
  conv.unread = 0;
  for (const auto& m : conv.messages) {
    if (!m.is_read && m.sender != account_id) ++conv.unread;
  }
  if (key.first == kTIMConv_C2C) {
    Json::Value receipt;
    receipt["msg_receipt_conv_id"] = account_id;
    receipt["msg_receipt_conv_type"] = kTIMConv_C2C;
    receipt["msg_receipt_time_stamp"] = Json::UInt64(last_time);
    Json::Value array(Json::arrayValue);
    array.append(receipt);
    NotifyLocked(key.second, Event{EventKind::kReadReceipts, WriteJson(array)});
  }
  ChangedLocked();
}

int Engine::ReportRead(const std::string& id, int type, const Json::Value& msg, ResultFn done) {
  ParamReader reader(msg);
  uint64_t up_to = reader.UInt64("message_unique_id", 0);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (SelfLocked().conversations.count({type, id}) == 0) return TIM_ERR_CONV_NOT_FOUND;
  if (QueuedFailureLocked("TIMMsgReportReaded", done)) return TIM_SUCC;
  MarkReadLocked(signed_in_, {type, id}, up_to);
  done(TIM_SUCC, "", "");
  return TIM_SUCC;
}

bool Engine::RevokeLocked(const std::string& sender, const ConvKey& key, uint64_t unique_id) {
  Account* account = FindAccountLocked(sender);
  if (account == nullptr) return false;
  auto it = account->conversations.find(key);
  if (it == account->conversations.end()) return false;
  auto& messages = it->second.messages;
  auto pos = std::find_if(messages.begin(), messages.end(), [&](const Message& m) {
    return m.unique_id == unique_id && m.sender == sender;
  });
  if (pos == messages.end()) return false;
  uint64_t time = pos->server_time;
  std::vector<std::string> receivers;
  if (key.first == kTIMConv_C2C) {
    receivers.push_back(key.second);
  } else if (auto g = world_.groups.find(key.second); g != world_.groups.end()) {
    for (const auto& m : g->second.members) receivers.push_back(m.id);
  }
  for (const auto& receiver : receivers) {
    if (receiver == sender) continue;
    Json::Value array(Json::arrayValue);
    array.append(RevokedLocator(key.first == kTIMConv_C2C ? sender : key.second, key.first, time,
                                unique_id));
    NotifyLocked(receiver, Event{EventKind::kRevoked, WriteJson(array)});
  }
  return true;
}

int Engine::Download(const Json::Value& param, const std::string& path, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("msg_download_elem_param_id");
  std::string url = reader.String("msg_download_elem_param_url");
  reader.Int64("msg_download_elem_param_type");
  reader.Int64("msg_download_elem_param_flag");
  reader.Int64("msg_download_elem_param_business_id");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty() && url.rfind(kFileUrlPrefix, 0) == 0) {
    id = url.substr(std::char_traits<char>::length(kFileUrlPrefix));
  }
  if (id.empty()) return TIM_ERR_INVALID_PARAM;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMMsgDownloadElemToPath", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  auto it = world_.files.find(id);
  if (it == world_.files.end()) {
    done(TIM_ERR_FILE_NOT_FOUND, "no such file", "");
    return TIM_SUCC;
  }
  const std::string& bytes = *it->second.bytes;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    done(TIM_ERR_FILE, "cannot write the file", "");
    return TIM_SUCC;
  }
  Json::Value result;
  result["msg_download_elem_result_current_size"] = Json::UInt64(bytes.size());
  result["msg_download_elem_result_total_size"] = Json::UInt64(bytes.size());
  done(TIM_SUCC, "", WriteJson(result));
  return TIM_SUCC;
}

}  // namespace imsdk
