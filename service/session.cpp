#include "service/session.h"

#include "platform/trace.h"

namespace service {

SessionStamp Session::Stamp() const {
  std::shared_lock lock(mutex_);
  return stamp_;
}

bool Session::IsCurrent(SessionStamp stamp) const {
  std::shared_lock lock(mutex_);
  return stamp != kNoSession && stamp == stamp_;
}

WString Session::UserId() const {
  std::shared_lock lock(mutex_);
  return user_id_;
}

SessionFolders Session::Folders() const {
  std::shared_lock lock(mutex_);
  return folders_;
}

StampedFolders Session::StampAndFolders() const {
  std::shared_lock lock(mutex_);
  return StampedFolders{stamp_, folders_};
}

uint64_t Session::Expect(WString userId, SessionFolders folders) {
  std::unique_lock lock(mutex_);
  awaited_ = ++last_attempt_;
  answered_ = 0;
  expected_user_ = std::move(userId);
  expected_folders_ = std::move(folders);
  return awaited_;
}

void Session::Refused(uint64_t attempt) {
  std::unique_lock lock(mutex_);
  if (awaited_ == attempt) awaited_ = 0;
}

std::optional<uint64_t> Session::TakeResult() {
  std::unique_lock lock(mutex_);
  if (awaited_ == 0) return std::nullopt;
  answered_ = awaited_;
  awaited_ = 0;
  return answered_;
}

std::optional<SessionStamp> Session::Accepted(uint64_t attempt) {
  std::unique_lock lock(mutex_);
  if (current_attempt_ == attempt) return stamp_;
  if (attempt == 0 || (awaited_ != attempt && answered_ != attempt)) return std::nullopt;
  // A new session: what the previous one (or the signed-out time) left goes.
  AdvanceLocked();
  current_attempt_ = attempt;
  user_id_ = expected_user_;
  folders_ = expected_folders_;
  return stamp_;
}

void Session::End() {
  std::unique_lock lock(mutex_);
  awaited_ = 0;
  answered_ = 0;
  current_attempt_ = 0;
  user_id_.clear();
  folders_ = {};
  AdvanceLocked();
}

void Session::AdvanceLocked() {
  // Writers hold the lock shared: none is inside while this runs.
  stamp_ = ++last_stamp_;
  if (clear_all_) clear_all_();
}

}  // namespace service
