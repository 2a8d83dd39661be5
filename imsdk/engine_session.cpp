// The engine's session: sign-in, sign-out, network, kick, signature expiry.
#include <chrono>
#include <ctime>

#include "imsdk/engine.h"
#include "imsdk/failure_queue.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/world_persistence.h"
#include "platform/trace.h"

namespace imsdk {

bool Group::HasMember(const std::string& account) const {
  for (const auto& m : members) {
    if (m.id == account) return true;
  }
  return false;
}

Engine& Engine::Instance() {
  // Never destroyed: the world outlives every SDK start and stop, and
  // nothing may run into a destroyed engine during process exit.
  static Engine* engine = new Engine();
  return *engine;
}

Engine::Engine() {
  ResetLocked();
}

void Engine::ResetLocked() {
  world_ = WorldData();
  auto now_ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                    std::chrono::system_clock::now().time_since_epoch())
                    .count();
  // Ids grow from the clock so that they stay unique across restarts even
  // for a world that is not saved.
  world_.next_message_id = static_cast<uint64_t>(now_ms) << 12;
  signed_in_.clear();
  network_up_ = true;
}

void Engine::Start(EventSink* sink) {
  std::lock_guard lock(mutex_);
  sink_ = sink;
}

void Engine::Stop() {
  std::lock_guard lock(mutex_);
  signed_in_.clear();
  sink_ = nullptr;
}

uint64_t Engine::NowSeconds() const {
  return static_cast<uint64_t>(std::time(nullptr));
}

uint64_t Engine::NewMessageIdLocked() {
  return ++world_.next_message_id;
}

Account* Engine::FindAccountLocked(const std::string& id) {
  auto it = world_.accounts.find(id);
  return it == world_.accounts.end() ? nullptr : &it->second;
}

void Engine::NotifyLocked(const std::string& account, Event event) {
  if (sink_ == nullptr || account.empty() || account != signed_in_) return;
  sink_->Post(std::move(event));
}

bool Engine::QueuedFailureLocked(const char* function, const ResultFn& done) {
  int code = FailureQueue::Results().Take(function);
  if (code == 0) return false;
  done(code, "queued failure", "");
  return true;
}

bool Engine::NetworkDownLocked(const ResultFn& done) {
  if (network_up_) return false;
  done(TIM_ERR_NETWORK, "network is down", "");
  return true;
}

int Engine::CheckSessionLocked() const {
  return signed_in_.empty() ? TIM_ERR_NOT_LOGGED_IN : TIM_SUCC;
}

int Engine::Login(const std::string& user, const std::string& sig, ResultFn done) {
  std::lock_guard lock(mutex_);
  if (!signed_in_.empty()) return TIM_ERR_ALREADY_LOGGED_IN;
  if (QueuedFailureLocked("TIMLogin", done) || NetworkDownLocked(done)) return TIM_SUCC;
  Account* account = FindAccountLocked(user);
  if (account == nullptr) {
    done(TIM_ERR_ACCOUNT_NOT_FOUND, "no such account", "");
    return TIM_SUCC;
  }
  if ((!account->signature.empty() && account->signature != sig) ||
      (!account->expired_signature.empty() && account->expired_signature == sig)) {
    done(TIM_ERR_USER_SIG_INVALID, "user signature refused", "");
    return TIM_SUCC;
  }
  signed_in_ = user;
  session_signature_ = sig;
  done(TIM_SUCC, "", "");
  NotifyLocked(user, Event{EventKind::kLog, "signed in " + user, 2});
  return TIM_SUCC;
}

int Engine::Logout(ResultFn done) {
  std::lock_guard lock(mutex_);
  if (signed_in_.empty()) return TIM_ERR_NOT_LOGGED_IN;
  signed_in_.clear();
  done(TIM_SUCC, "", "");
  return TIM_SUCC;
}

void Engine::SetNetworkLocked(bool up) {
  if (network_up_ == up) return;
  network_up_ = up;
  if (up) {
    NotifyLocked(signed_in_, Event{EventKind::kNetworkStatus, "", kTIMConnecting, 0, 0, ""});
    NotifyLocked(signed_in_, Event{EventKind::kNetworkStatus, "", kTIMConnected, 0, 0, ""});
  } else {
    NotifyLocked(signed_in_, Event{EventKind::kNetworkStatus, "", kTIMDisconnected, TIM_ERR_NETWORK,
                                   0, "network is down"});
  }
}

bool Engine::KickSignedInLocked() {
  if (signed_in_.empty()) return false;
  NotifyLocked(signed_in_, Event{EventKind::kKickedOffline});
  signed_in_.clear();
  return true;
}

bool Engine::ExpireSignatureLocked() {
  if (signed_in_.empty()) return false;
  SelfLocked().expired_signature = session_signature_;
  NotifyLocked(signed_in_, Event{EventKind::kUserSigExpired});
  return true;
}

}  // namespace imsdk

namespace imsdk {

std::string Engine::ChangedLocked() {
  if (autosave_path_.empty()) return "";
  std::string error = SaveWorld(world_, autosave_path_);
  if (!error.empty()) platform::Trace("imsdk: %s", error.c_str());
  return error;
}

}  // namespace imsdk
