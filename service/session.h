#pragma once
// The signed-in session: who is signed in, where that user's files are, and
// the stamp that tells one session's work from the next one's.
//
// A session begins when the SDK accepts a sign-in and ends at ClearResource
// (or when the next one begins). Every payload posted to the window carries
// the stamp of its session; work done for a stamp that is no longer current
// is dropped. WhileCurrent runs a write only while its stamp is current, and
// the start and end of a session wait for running writes and then empty
// every cache, so no write of an ended session can land in the next one,
// whichever thread it runs on.
//
// A write under WhileCurrent touches caches and the store only: no SDK call
// and no window call (either could end the session from inside the write).

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <shared_mutex>

#include "platform/strings.h"
#include "service/window_payloads.h"

namespace service {

// The user's folders as they were prepared for the accepted sign-in.
struct SessionFolders {
  WString db;
  WString face;
  WString download;
};

// A session's stamp and folders, read together.
struct StampedFolders {
  SessionStamp stamp = kNoSession;
  SessionFolders folders;
};

class Session {
 public:
  // `clearAll` empties every cache and closes the store; it runs when a
  // session ends and when one begins.
  explicit Session(std::function<void()> clearAll) : clear_all_(std::move(clearAll)) {}

  SessionStamp Stamp() const;
  bool IsCurrent(SessionStamp stamp) const;
  WString UserId() const;
  SessionFolders Folders() const;
  StampedFolders StampAndFolders() const;

  // Sign-in, in the order it happens: Expect before TIMLogin, then Refused
  // or Accepted by its return value; the login callback calls TakeResult
  // (none: the result is late, its sign-in was ended or never made) and on
  // success Accepted. Accepted begins the session once, whichever comes first.
  uint64_t Expect(WString userId, SessionFolders folders);
  void Refused(uint64_t attempt);
  std::optional<uint64_t> TakeResult();
  // The stamp of the attempt's session; none when the attempt was ended.
  std::optional<SessionStamp> Accepted(uint64_t attempt);
  // ClearResource: forgets the user and any awaited sign-in.
  void End();

  // Runs `write` only while `stamp` is current; false when it did not run.
  template <typename Write>
  bool WhileCurrent(SessionStamp stamp, Write&& write) {
    std::shared_lock lock(mutex_);
    if (stamp == kNoSession || stamp != stamp_) return false;
    write();
    return true;
  }

 private:
  void AdvanceLocked();

  std::function<void()> clear_all_;
  mutable std::shared_mutex mutex_;
  // --- guarded by mutex_ ---
  SessionStamp stamp_ = 1;  // the signed-out time counts as a session of its own
  SessionStamp last_stamp_ = 1;
  WString user_id_;
  SessionFolders folders_;
  uint64_t last_attempt_ = 0;
  uint64_t awaited_ = 0;   // TIMLogin accepted or running, result not in
  uint64_t answered_ = 0;  // its result arrived, session not yet begun
  uint64_t current_attempt_ = 0;
  WString expected_user_;
  SessionFolders expected_folders_;
};

}  // namespace service
