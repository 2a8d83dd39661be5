// EngineControl: the test and demo side of the embedded engine.
#include "imsdk/engine_control.h"

#include "imsdk/engine.h"
#include "imsdk/failure_queue.h"
#include "imsdk/json_util.h"
#include "imsdk/outgoing_elems.h"
#include "imsdk/world_persistence.h"

namespace imsdk {
namespace {

Engine& E() {
  return Engine::Instance();
}

std::unique_lock<std::mutex> Lock() {
  return std::unique_lock<std::mutex>(E().mutex());
}

const Account* FindAccount(const std::string& id) {
  auto it = E().world().accounts.find(id);
  return it == E().world().accounts.end() ? nullptr : &it->second;
}

const Conversation* FindConv(const std::string& account, int type, const std::string& id) {
  const Account* a = FindAccount(account);
  if (a == nullptr) return nullptr;
  auto it = a->conversations.find({type, id});
  return it == a->conversations.end() ? nullptr : &it->second;
}

Json::Value OneElem(int type, const char* key, const std::string& value) {
  Json::Value elems(Json::arrayValue);
  Json::Value elem;
  elem["elem_type"] = type;
  elem[key] = value;
  elems.append(elem);
  return elems;
}

int Send(const std::string& from, int type, const std::string& conv_id, const Json::Value& elems,
         uint64_t* unique_id) {
  if (type != kTIMConv_C2C && type != kTIMConv_Group) return TIM_ERR_INVALID_CONV_TYPE;
  if (int code = CheckOutgoingElems(elems)) return code;
  auto lock = Lock();
  Message stored;
  int code = E().SendAsLocked(from, type, conv_id, elems, &stored);
  if (code == TIM_SUCC && unique_id != nullptr) *unique_id = stored.unique_id;
  return code;
}

}  // namespace

EngineControl& EngineControl::Instance() {
  static EngineControl control;
  return control;
}

void EngineControl::Reset() {
  FailureQueue::Calls().Clear();
  FailureQueue::Results().Clear();
  auto lock = Lock();
  E().ResetLocked();
  E().SetAutoSavePathLocked("");
}

bool EngineControl::CreateAccount(const std::string& id, const AccountOptions& options) {
  if (id.empty() || id.size() > TIM_MAX_ID_LENGTH) return false;
  auto lock = Lock();
  auto& accounts = E().world().accounts;
  if (accounts.count(id) > 0) return false;
  Account& a = accounts[id];
  a.id = id;
  a.nick = options.nick.empty() ? id : options.nick;
  a.face_url = options.face_url;
  a.add_permission = options.add_permission;
  a.signature = options.signature;
  E().ChangedLocked();
  return true;
}

bool EngineControl::HasAccount(const std::string& id) const {
  auto lock = Lock();
  return FindAccount(id) != nullptr;
}

bool EngineControl::UpdateProfile(const std::string& id, const AccountOptions& options) {
  auto lock = Lock();
  auto it = E().world().accounts.find(id);
  if (it == E().world().accounts.end()) return false;
  it->second.nick = options.nick;
  it->second.face_url = options.face_url;
  it->second.add_permission = options.add_permission;
  E().ProfileChangedLocked(id);
  E().ChangedLocked();
  return true;
}

void EngineControl::SetSignature(const std::string& id, const std::string& signature) {
  auto lock = Lock();
  auto it = E().world().accounts.find(id);
  if (it == E().world().accounts.end()) return;
  it->second.signature = signature;
  it->second.expired_signature.clear();
  E().ChangedLocked();
}

bool EngineControl::MakeFriends(const std::string& a, const std::string& b) {
  auto lock = Lock();
  if (a == b || FindAccount(a) == nullptr || FindAccount(b) == nullptr) return false;
  E().MakeFriendsLocked(a, b, "control", "");
  return true;
}

bool EngineControl::RemoveFriend(const std::string& owner, const std::string& friend_id) {
  auto lock = Lock();
  return E().RemoveFriendLocked(owner, friend_id);
}

int EngineControl::RequestFriend(const std::string& from, const std::string& to,
                                 const std::string& wording, const std::string& source) {
  auto lock = Lock();
  return E().FriendRequestLocked(from, to, source, wording, "");
}

int EngineControl::AnswerFriendRequest(const std::string& owner, const std::string& requester,
                                       int action) {
  auto lock = Lock();
  return E().AnswerRequestLocked(owner, requester, action);
}

std::string EngineControl::CreateGroup(const std::string& owner, const std::string& name,
                                       const std::vector<std::string>& members,
                                       const std::string& group_id) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  int code = 0;
  return E().CreateGroupLocked(owner, name, group_id, "", 0, members, &code);
}

int EngineControl::RenameGroup(const std::string& actor, const std::string& group_id,
                               const std::string& name) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  return E().ModifyGroupLocked(actor, group_id, &name, nullptr, nullptr);
}

int EngineControl::TransferGroupOwner(const std::string& actor, const std::string& group_id,
                                      const std::string& new_owner) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  return E().ModifyGroupLocked(actor, group_id, nullptr, nullptr, &new_owner);
}

int EngineControl::AddGroupMembers(const std::string& actor, const std::string& group_id,
                                   const std::vector<std::string>& ids) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  Json::Value results;
  return E().InviteLocked(actor, group_id, ids, &results);
}

int EngineControl::RemoveGroupMembers(const std::string& actor, const std::string& group_id,
                                      const std::vector<std::string>& ids) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  Json::Value results;
  return E().KickLocked(actor, group_id, ids, &results);
}

int EngineControl::QuitGroup(const std::string& actor, const std::string& group_id) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  return E().QuitGroupLocked(actor, group_id);
}

int EngineControl::DisbandGroup(const std::string& actor, const std::string& group_id) {
  GroupChangesFlush flush(E());
  auto lock = Lock();
  return E().DisbandGroupLocked(actor, group_id);
}

int EngineControl::SendText(const std::string& from, int conv_type, const std::string& conv_id,
                            const std::string& text, uint64_t* unique_id) {
  return Send(from, conv_type, conv_id, OneElem(kTIMElem_Text, "text_elem_content", text),
              unique_id);
}

int EngineControl::SendImage(const std::string& from, int conv_type, const std::string& conv_id,
                             const std::string& local_path, uint64_t* unique_id) {
  return Send(from, conv_type, conv_id, OneElem(kTIMElem_Image, "image_elem_orig_path", local_path),
              unique_id);
}

int EngineControl::SendFile(const std::string& from, int conv_type, const std::string& conv_id,
                            const std::string& local_path, uint64_t* unique_id) {
  return Send(from, conv_type, conv_id, OneElem(kTIMElem_File, "file_elem_file_path", local_path),
              unique_id);
}

int EngineControl::SendCustom(const std::string& from, int conv_type, const std::string& conv_id,
                              const std::string& data, uint64_t* unique_id) {
  return Send(from, conv_type, conv_id, OneElem(kTIMElem_Custom, "custom_elem_data", data),
              unique_id);
}

int EngineControl::SendElems(const std::string& from, int conv_type, const std::string& conv_id,
                             const std::string& json_elem_array, uint64_t* unique_id) {
  Json::Value elems;
  if (!ParseJson(json_elem_array, &elems)) return TIM_ERR_INVALID_JSON;
  return Send(from, conv_type, conv_id, elems, unique_id);
}

bool EngineControl::MarkRead(const std::string& account, int conv_type,
                             const std::string& conv_id) {
  auto lock = Lock();
  if (FindConv(account, conv_type, conv_id) == nullptr) return false;
  E().MarkReadLocked(account, {conv_type, conv_id}, 0);
  return true;
}

bool EngineControl::RevokeMessage(const std::string& sender, int conv_type,
                                  const std::string& conv_id, uint64_t unique_id) {
  auto lock = Lock();
  return E().RevokeLocked(sender, {conv_type, conv_id}, unique_id);
}

void EngineControl::SetGroupObserver(GroupObserver* observer) {
  E().SetGroupObserver(observer);
}

void EngineControl::FailNextCall(const std::string& function, int code) {
  FailureQueue::Calls().Push(function, code);
}

void EngineControl::FailNextResult(const std::string& function, int code) {
  FailureQueue::Results().Push(function, code);
}

void EngineControl::ClearQueuedFailures() {
  FailureQueue::Calls().Clear();
  FailureQueue::Results().Clear();
}

void EngineControl::SetNetworkUp(bool up) {
  auto lock = Lock();
  E().SetNetworkLocked(up);
}

bool EngineControl::NetworkUp() const {
  auto lock = Lock();
  return E().network_up();
}

bool EngineControl::KickSignedIn() {
  auto lock = Lock();
  return E().KickSignedInLocked();
}

bool EngineControl::ExpireSignature() {
  auto lock = Lock();
  return E().ExpireSignatureLocked();
}

std::string EngineControl::SignedInAccount() const {
  auto lock = Lock();
  return E().signed_in();
}

std::vector<std::string> EngineControl::FriendsOf(const std::string& account) const {
  auto lock = Lock();
  std::vector<std::string> ids;
  if (const Account* a = FindAccount(account)) {
    for (const auto& [id, f] : a->friends) ids.push_back(id);
  }
  return ids;
}

size_t EngineControl::PendencyCount(const std::string& account) const {
  auto lock = Lock();
  const Account* a = FindAccount(account);
  return a == nullptr ? 0 : a->pendencies.size();
}

bool EngineControl::HasConversation(const std::string& account, int conv_type,
                                    const std::string& conv_id) const {
  auto lock = Lock();
  return FindConv(account, conv_type, conv_id) != nullptr;
}

uint64_t EngineControl::UnreadCount(const std::string& account, int conv_type,
                                    const std::string& conv_id) const {
  auto lock = Lock();
  const Conversation* c = FindConv(account, conv_type, conv_id);
  return c == nullptr ? 0 : c->unread;
}

size_t EngineControl::MessageCount(const std::string& account, int conv_type,
                                   const std::string& conv_id) const {
  auto lock = Lock();
  const Conversation* c = FindConv(account, conv_type, conv_id);
  return c == nullptr ? 0 : c->messages.size();
}

std::string EngineControl::LastMessageJson(const std::string& account, int conv_type,
                                           const std::string& conv_id) const {
  auto lock = Lock();
  const Conversation* c = FindConv(account, conv_type, conv_id);
  if (c == nullptr || c->messages.empty()) return "";
  return E().MessageJsonLocked(c->messages.back(), account);
}

std::string EngineControl::GroupName(const std::string& group_id) const {
  auto lock = Lock();
  auto it = E().world().groups.find(group_id);
  return it == E().world().groups.end() ? "" : it->second.name;
}

std::string EngineControl::GroupOwner(const std::string& group_id) const {
  auto lock = Lock();
  auto it = E().world().groups.find(group_id);
  return it == E().world().groups.end() ? "" : it->second.owner;
}

std::vector<std::string> EngineControl::GroupMembers(const std::string& group_id) const {
  auto lock = Lock();
  std::vector<std::string> ids;
  auto it = E().world().groups.find(group_id);
  if (it != E().world().groups.end()) {
    for (const auto& m : it->second.members) ids.push_back(m.id);
  }
  return ids;
}

std::string EngineControl::ProfileJson(const std::string& account) const {
  auto lock = Lock();
  return E().ProfileJsonLocked(account);
}

size_t EngineControl::StoredFileCount() const {
  auto lock = Lock();
  return E().world().files.size();
}

std::string EngineControl::Save(const std::string& path) const {
  auto lock = Lock();
  return SaveWorld(E().world(), path);
}

std::string EngineControl::Load(const std::string& path) {
  WorldData loaded;
  std::string error = LoadWorld(path, &loaded);
  if (!error.empty()) return error;
  auto lock = Lock();
  // Ids must keep growing past the ones the file already holds.
  loaded.next_message_id = std::max(loaded.next_message_id, E().world().next_message_id);
  E().world() = std::move(loaded);
  return "";
}

std::string EngineControl::SetAutoSave(const std::string& path) {
  auto lock = Lock();
  E().SetAutoSavePathLocked(path);
  return E().ChangedLocked();
}

bool EngineControl::SetAutoReply(const std::string& account, int delay_ms,
                                 const std::string& prefix) {
  auto lock = Lock();
  auto it = E().world().accounts.find(account);
  if (it == E().world().accounts.end()) return false;
  it->second.auto_reply = AutoReply{true, delay_ms < 0 ? 0 : delay_ms, prefix};
  E().ChangedLocked();
  return true;
}

}  // namespace imsdk
