// The thirteen event callbacks: registration and delivery on the callback
// thread. Registrations are process-wide and survive TIMUninit.
#include <mutex>
#include <vector>

#include "imsdk/call_log.h"
#include "imsdk/json_util.h"
#include "imsdk/sdk_runtime.h"

namespace imsdk {
namespace {

template <typename Fn>
struct Slot {
  Fn fn = nullptr;
  void* user_data = nullptr;
};

struct Registry {
  std::mutex mutex;
  std::vector<Slot<TIMRecvNewMsgCallback>> new_msg;
  Slot<TIMMsgReadedReceiptCallback> receipt;
  Slot<TIMMsgRevokeCallback> revoke;
  Slot<TIMMsgElemUploadProgressCallback> upload;
  Slot<TIMGroupTipsEventCallback> group_tips;
  Slot<TIMNetworkStatusListenerCallback> network;
  Slot<TIMKickedOfflineCallback> kicked;
  Slot<TIMUserSigExpiredCallback> sig_expired;
  Slot<TIMOnAddFriendCallback> friend_added;
  Slot<TIMOnDeleteFriendCallback> friend_deleted;
  Slot<TIMUpdateFriendProfileCallback> friend_profile;
  Slot<TIMFriendAddRequestCallback> friend_request;
  Slot<TIMLogCallback> log;
};

Registry& GetRegistry() {
  static Registry registry;
  return registry;
}

template <typename Fn>
void Set(const char* name, Slot<Fn> Registry::*member, Fn fn, void* user_data) {
  if (CallLogEnabled()) {
    Json::Value params;
    params["callback"] = fn != nullptr;
    LogCall(name, params);
  }
  Registry& r = GetRegistry();
  std::lock_guard lock(r.mutex);
  (r.*member).fn = fn;
  (r.*member).user_data = user_data;
}

template <typename Fn>
Slot<Fn> Get(Slot<Fn> Registry::*member) {
  Registry& r = GetRegistry();
  std::lock_guard lock(r.mutex);
  return r.*member;
}

void LogEvent(const char* name, const Event& e) {
  if (!CallLogEnabled()) return;
  Json::Value line;
  switch (e.kind) {
    case EventKind::kUploadProgress:
      line["json"] = e.json;
      line["index"] = Json::Int64(e.a);
      line["cur_size"] = Json::Int64(e.b);
      line["total_size"] = Json::Int64(e.c);
      break;
    case EventKind::kNetworkStatus:
      line["status"] = Json::Int64(e.a);
      line["code"] = Json::Int64(e.b);
      line["desc"] = e.desc;
      break;
    case EventKind::kLog:
      line["level"] = Json::Int64(e.a);
      line["json"] = e.json;
      break;
    default:
      line["json"] = e.json;
  }
  LogCallback(name, std::move(line));
}

template <typename Fn>
void DeliverText(const char* name, Slot<Fn> Registry::*member, const Event& e) {
  LogEvent(name, e);
  auto slot = Get(member);
  if (slot.fn != nullptr) slot.fn(e.json.c_str(), slot.user_data);
}

}  // namespace

void DeliverEvent(const Event& e) {
  switch (e.kind) {
    case EventKind::kNewMessages: {
      LogEvent("TIMAddRecvNewMsgCallback", e);
      std::vector<Slot<TIMRecvNewMsgCallback>> slots;
      {
        Registry& r = GetRegistry();
        std::lock_guard lock(r.mutex);
        slots = r.new_msg;
      }
      for (const auto& slot : slots) slot.fn(e.json.c_str(), slot.user_data);
      break;
    }
    case EventKind::kReadReceipts:
      DeliverText("TIMSetMsgReadedReceiptCallback", &Registry::receipt, e);
      break;
    case EventKind::kRevoked:
      DeliverText("TIMSetMsgRevokeCallback", &Registry::revoke, e);
      break;
    case EventKind::kUploadProgress: {
      LogEvent("TIMSetMsgElemUploadProgressCallback", e);
      auto slot = Get(&Registry::upload);
      if (slot.fn != nullptr) {
        slot.fn(e.json.c_str(), static_cast<uint32_t>(e.a), static_cast<uint32_t>(e.b),
                static_cast<uint32_t>(e.c), slot.user_data);
      }
      break;
    }
    case EventKind::kGroupTips:
      DeliverText("TIMSetGroupTipsEventCallback", &Registry::group_tips, e);
      break;
    case EventKind::kNetworkStatus: {
      LogEvent("TIMSetNetworkStatusListenerCallback", e);
      auto slot = Get(&Registry::network);
      if (slot.fn != nullptr) {
        slot.fn(static_cast<int32_t>(e.a), static_cast<int32_t>(e.b), e.desc.c_str(),
                slot.user_data);
      }
      break;
    }
    case EventKind::kKickedOffline: {
      LogEvent("TIMSetKickedOfflineCallback", e);
      auto slot = Get(&Registry::kicked);
      if (slot.fn != nullptr) slot.fn(slot.user_data);
      break;
    }
    case EventKind::kUserSigExpired: {
      LogEvent("TIMSetUserSigExpiredCallback", e);
      auto slot = Get(&Registry::sig_expired);
      if (slot.fn != nullptr) slot.fn(slot.user_data);
      break;
    }
    case EventKind::kFriendsAdded:
      DeliverText("TIMSetOnAddFriendCallback", &Registry::friend_added, e);
      break;
    case EventKind::kFriendsDeleted:
      DeliverText("TIMSetOnDeleteFriendCallback", &Registry::friend_deleted, e);
      break;
    case EventKind::kFriendProfileUpdated:
      DeliverText("TIMSetUpdateFriendProfileCallback", &Registry::friend_profile, e);
      break;
    case EventKind::kFriendRequests:
      DeliverText("TIMSetFriendAddRequestCallback", &Registry::friend_request, e);
      break;
    case EventKind::kLog: {
      // Log lines are not written to the call log: they would only repeat it.
      auto slot = Get(&Registry::log);
      if (slot.fn != nullptr) slot.fn(static_cast<int32_t>(e.a), e.json.c_str(), slot.user_data);
      break;
    }
  }
}

}  // namespace imsdk

using imsdk::Registry;
using imsdk::Set;

extern "C" {

void TIMAddRecvNewMsgCallback(TIMRecvNewMsgCallback cb, void* user_data) {
  imsdk::LogCall("TIMAddRecvNewMsgCallback", Json::Value(cb != nullptr));
  if (cb == nullptr) return;
  Registry& r = imsdk::GetRegistry();
  std::lock_guard lock(r.mutex);
  for (const auto& slot : r.new_msg) {
    if (slot.fn == cb && slot.user_data == user_data) return;
  }
  r.new_msg.push_back({cb, user_data});
}

void TIMRemoveRecvNewMsgCallback(TIMRecvNewMsgCallback cb) {
  imsdk::LogCall("TIMRemoveRecvNewMsgCallback", Json::Value(cb != nullptr));
  Registry& r = imsdk::GetRegistry();
  std::lock_guard lock(r.mutex);
  std::erase_if(r.new_msg, [cb](const auto& slot) { return slot.fn == cb; });
}

void TIMSetMsgReadedReceiptCallback(TIMMsgReadedReceiptCallback cb, void* user_data) {
  Set("TIMSetMsgReadedReceiptCallback", &Registry::receipt, cb, user_data);
}
void TIMSetMsgRevokeCallback(TIMMsgRevokeCallback cb, void* user_data) {
  Set("TIMSetMsgRevokeCallback", &Registry::revoke, cb, user_data);
}
void TIMSetMsgElemUploadProgressCallback(TIMMsgElemUploadProgressCallback cb, void* user_data) {
  Set("TIMSetMsgElemUploadProgressCallback", &Registry::upload, cb, user_data);
}
void TIMSetGroupTipsEventCallback(TIMGroupTipsEventCallback cb, void* user_data) {
  Set("TIMSetGroupTipsEventCallback", &Registry::group_tips, cb, user_data);
}
void TIMSetNetworkStatusListenerCallback(TIMNetworkStatusListenerCallback cb, void* user_data) {
  Set("TIMSetNetworkStatusListenerCallback", &Registry::network, cb, user_data);
}
void TIMSetKickedOfflineCallback(TIMKickedOfflineCallback cb, void* user_data) {
  Set("TIMSetKickedOfflineCallback", &Registry::kicked, cb, user_data);
}
void TIMSetUserSigExpiredCallback(TIMUserSigExpiredCallback cb, void* user_data) {
  Set("TIMSetUserSigExpiredCallback", &Registry::sig_expired, cb, user_data);
}
void TIMSetOnAddFriendCallback(TIMOnAddFriendCallback cb, void* user_data) {
  Set("TIMSetOnAddFriendCallback", &Registry::friend_added, cb, user_data);
}
void TIMSetOnDeleteFriendCallback(TIMOnDeleteFriendCallback cb, void* user_data) {
  Set("TIMSetOnDeleteFriendCallback", &Registry::friend_deleted, cb, user_data);
}
void TIMSetUpdateFriendProfileCallback(TIMUpdateFriendProfileCallback cb, void* user_data) {
  Set("TIMSetUpdateFriendProfileCallback", &Registry::friend_profile, cb, user_data);
}
void TIMSetFriendAddRequestCallback(TIMFriendAddRequestCallback cb, void* user_data) {
  Set("TIMSetFriendAddRequestCallback", &Registry::friend_request, cb, user_data);
}
void TIMSetLogCallback(TIMLogCallback cb, void* user_data) {
  Set("TIMSetLogCallback", &Registry::log, cb, user_data);
}

}  // extern "C"
