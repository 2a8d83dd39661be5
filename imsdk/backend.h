#pragma once
// The seam between the C functions and whatever answers them. The embedded
// engine is one Backend; a client of a network server would be another. A
// backend never calls user callbacks itself: it reports results through the
// ResultFn it was given and pushes events into the EventSink, and the C layer
// carries both to the callback thread in the order they were reported.
#include <json/json.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace imsdk {

// Exactly one call per accepted request, possibly before the request returns.
using ResultFn = std::function<void(int code, const std::string& desc, const std::string& json)>;

enum class EventKind {
  kNewMessages,
  kReadReceipts,
  kRevoked,
  kUploadProgress,
  kGroupTips,
  kNetworkStatus,
  kKickedOffline,
  kUserSigExpired,
  kFriendsAdded,
  kFriendsDeleted,
  kFriendProfileUpdated,
  kFriendRequests,
  kLog,
};

struct Event {
  explicit Event(EventKind k, std::string text = {}, int64_t first = 0, int64_t second = 0,
                 int64_t third = 0, std::string description = {})
      : kind(k),
        json(std::move(text)),
        a(first),
        b(second),
        c(third),
        desc(std::move(description)) {}
  EventKind kind;
  std::string json;  // payload text (or the log line)
  int64_t a = 0;     // network status / element index / log level
  int64_t b = 0;     // network code / bytes done
  int64_t c = 0;     // bytes total
  std::string desc;  // network description
};

class EventSink {
 public:
  virtual ~EventSink() = default;
  virtual void Post(Event event) = 0;
  // Runs `task` on the callback thread after `delay` (not a user callback:
  // it survives TIMLogout and is dropped by TIMUninit).
  virtual void RunLater(std::chrono::milliseconds delay, std::function<void()> task) = 0;
};

// Every request returns 0 when accepted (then `done` follows exactly once) or
// a TIM_ERR_... refusal code (then `done` is never called).
class Backend {
 public:
  virtual ~Backend() = default;
  virtual void Start(EventSink* sink) = 0;
  // After Stop returns the backend touches the sink no more.
  virtual void Stop() = 0;

  virtual int Login(const std::string& user, const std::string& sig, ResultFn done) = 0;
  virtual int Logout(ResultFn done) = 0;

  virtual int GetConvList(ResultFn done) = 0;
  virtual int CreateConv(const std::string& id, int type, ResultFn done) = 0;
  virtual int DeleteConv(const std::string& id, int type, ResultFn done) = 0;

  virtual int SendMessage(const std::string& id, int type, const Json::Value& msg,
                          ResultFn done) = 0;
  virtual int GetMessages(const std::string& id, int type, const Json::Value& param,
                          ResultFn done) = 0;
  virtual int ReportRead(const std::string& id, int type, const Json::Value& msg,
                         ResultFn done) = 0;
  virtual int Download(const Json::Value& param, const std::string& path, ResultFn done) = 0;

  virtual int GetFriends(ResultFn done) = 0;
  virtual int AddFriend(const Json::Value& param, ResultFn done) = 0;
  virtual int DeleteFriends(const Json::Value& param, ResultFn done) = 0;
  virtual int ModifyFriend(const Json::Value& param, ResultFn done) = 0;
  virtual int GetPendencies(const Json::Value& param, ResultFn done) = 0;
  virtual int ReportPendenciesRead(uint64_t time_stamp, ResultFn done) = 0;
  virtual int HandleFriendRequest(const Json::Value& param, ResultFn done) = 0;
  virtual int GetProfiles(const Json::Value& param, ResultFn done) = 0;
  virtual int ModifySelfProfile(const Json::Value& param, ResultFn done) = 0;

  virtual int GetJoinedGroups(ResultFn done) = 0;
  virtual int GetGroupInfos(const Json::Value& ids, ResultFn done) = 0;
  virtual int CreateGroup(const Json::Value& param, ResultFn done) = 0;
  virtual int DisbandGroup(const std::string& group_id, ResultFn done) = 0;
  virtual int QuitGroup(const std::string& group_id, ResultFn done) = 0;
  virtual int InviteMembers(const Json::Value& param, ResultFn done) = 0;
  virtual int RemoveMembers(const Json::Value& param, ResultFn done) = 0;
  virtual int ModifyGroup(const Json::Value& param, ResultFn done) = 0;
  virtual int GetMembers(const Json::Value& param, ResultFn done) = 0;
};

}  // namespace imsdk
