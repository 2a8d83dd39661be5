#include "imsdk/xmpp/xmpp_link.h"

#include <pthread.h>
#include <signal.h>

#include <condition_variable>
#include <cstdlib>
#include <cstring>

#include "platform/trace.h"

namespace imsdk::xmpp {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kSignInLimit = 15s;
constexpr auto kPingEvery = 30s;
constexpr auto kFirstBackoff = 500ms;
constexpr auto kLongestBackoff = 8s;
constexpr auto kSignOutLimit = 2s;
constexpr unsigned long kLoopSliceMs = 10;
constexpr auto kLongestBatch = 200ms;
// A burst goes on while stanzas come at most this far apart.
constexpr unsigned long kBurstGapMs = 5;

void InitialiseLibraryOnce() {
  static std::once_flag once;
  std::call_once(once, [] { xmpp_initialize(); });
}

// libstrophe's SHA-1 keeps its workspace in a static buffer, so two
// connections of one process must not authenticate at the same time: a
// sign-in holds this gate until the stream is ready or has failed. Not a
// mutex: the thread that releases it need not be the one that took it.
class SignInGate {
 public:
  bool try_lock_for(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    if (!free_.wait_for(lock, limit, [this] { return !taken_; })) return false;
    taken_ = true;
    return true;
  }
  void unlock() {
    {
      std::lock_guard lock(mutex_);
      taken_ = false;
    }
    free_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable free_;
  bool taken_ = false;
};

SignInGate& LoginGate() {
  static SignInGate gate;
  return gate;
}

struct CallbackScope {
  explicit CallbackScope(int& depth) : depth(depth) { ++depth; }
  ~CallbackScope() { --depth; }
  int& depth;
};

}  // namespace

XmppLink::XmppLink(LinkListener* listener) : listener_(listener) {
  InitialiseLibraryOnce();
  log_.handler = &XmppLink::LogHandler;
  log_.userdata = this;
  ctx_ = xmpp_ctx_new(nullptr, &log_);
  worker_ = std::thread([this] { Run(); });
}

XmppLink::~XmppLink() {
  Call([this] { SignOut(); }, 3s);
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  tasks_changed_.notify_all();
  worker_.join();
  ReleaseConnection(false);
  if (sm_state_ != nullptr) xmpp_free_sm_state(sm_state_);
  FailPendingIqs();
  if (ctx_ != nullptr) xmpp_ctx_free(ctx_);
}

void XmppLink::Post(std::function<void()> task) {
  {
    std::lock_guard lock(mutex_);
    if (stopping_) return;
    tasks_.push_back(std::move(task));
  }
  tasks_changed_.notify_all();
}

bool XmppLink::Call(std::function<void()> task, std::chrono::milliseconds limit) {
  if (OnWorker()) {
    task();
    return true;
  }
  struct Done {
    std::mutex mutex;
    std::condition_variable cv;
    bool done = false;
  };
  auto done = std::make_shared<Done>();
  Post([task = std::move(task), done] {
    task();
    std::lock_guard lock(done->mutex);
    done->done = true;
    done->cv.notify_all();
  });
  std::unique_lock lock(done->mutex);
  return done->cv.wait_for(lock, limit, [&] { return done->done; });
}

void XmppLink::Run() {
  // Writing to a connection the server dropped raises SIGPIPE, which would
  // end the host's process; blocked on this thread, the write fails with
  // EPIPE instead and the connection is reported lost.
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  for (;;) {
    {
      std::unique_lock lock(mutex_);
      if (stopping_) return;
      if (tasks_.empty() && conn_ == nullptr) {
        tasks_changed_.wait_for(lock, std::chrono::milliseconds(kLoopSliceMs));
      }
      if (stopping_) return;
    }
    DrainTasks();
    if (conn_ != nullptr) ReadAvailable();
    // A connection is never released inside its own handler.
    if (release_conn_) ReleaseConnection(state_ == State::kReconnecting);
    Tick();
    try {
      listener_->OnIdle();
    } catch (const std::exception& e) {
      platform::Trace("xmpp: flushing failed: %s", e.what());
    }
  }
}

void XmppLink::ReadAvailable() {
  uint64_t before = stanzas_seen_;
  xmpp_run_once(ctx_, kLoopSliceMs);
  // While stanzas keep coming, read on before the listener flushes: a burst
  // becomes a few large batches instead of many small ones.
  const auto until = Clock::now() + kLongestBatch;
  while (conn_ != nullptr && stanzas_seen_ != before && Clock::now() < until) {
    before = stanzas_seen_;
    xmpp_run_once(ctx_, kBurstGapMs);
  }
}

void XmppLink::DrainTasks() {
  std::deque<std::function<void()>> tasks;
  {
    std::lock_guard lock(mutex_);
    tasks.swap(tasks_);
  }
  for (auto& task : tasks) {
    try {
      task();
    } catch (const std::exception& e) {
      platform::Trace("xmpp: a task failed: %s", e.what());
    }
  }
}

std::string XmppLink::NewId() {
  if (id_prefix_.empty()) {
    char* uuid = xmpp_uuid_gen(ctx_);
    id_prefix_ = uuid == nullptr ? "imsdk" : std::string(uuid).substr(0, 8);
    if (uuid != nullptr) xmpp_free(ctx_, uuid);
  }
  return id_prefix_ + "-" + std::to_string(++next_id_);
}

void XmppLink::SignIn(const XmppConfig& config, const std::string& jid,
                      const std::string& password) {
  config_ = config;
  jid_ = jid;
  password_ = password;
  ever_online_ = false;
  backoff_ = kFirstBackoff;
  state_ = State::kSigningIn;
  sign_in_deadline_ = Clock::now() + kSignInLimit;
  Connect();
}

void XmppLink::Connect() {
  ReleaseConnection(true);
  auth_failed_ = false;
  if (!holds_login_gate_) {
    if (!LoginGate().try_lock_for(10s)) {
      platform::Trace("xmpp: another sign-in of this process takes long; going on");
    } else {
      holds_login_gate_ = true;
    }
  }
  conn_ = xmpp_conn_new(ctx_);
  long flags = 0;
  if (!config_.PlaintextAllowed()) flags |= XMPP_CONN_FLAG_MANDATORY_TLS;
  xmpp_conn_set_flags(conn_, flags);
  xmpp_conn_set_jid(conn_, jid_.c_str());
  xmpp_conn_set_pass(conn_, password_.c_str());
  xmpp_conn_set_sockopt_callback(conn_, xmpp_sockopt_cb_keepalive);
  xmpp_handler_add(conn_, &XmppLink::StanzaHandler, nullptr, nullptr, nullptr, this);
  if (sm_state_ != nullptr) {
    // Stream management resumes the old stream: nothing unacknowledged is lost.
    if (xmpp_conn_set_sm_state(conn_, sm_state_) != XMPP_EOK) xmpp_free_sm_state(sm_state_);
    sm_state_ = nullptr;
  }
  const char* host = config_.host.empty() ? nullptr : config_.host.c_str();
  int rc = xmpp_connect_client(conn_, host, static_cast<unsigned short>(config_.port),
                               &XmppLink::ConnHandler, this);
  if (rc != XMPP_EOK) {
    platform::Trace("xmpp: cannot start connecting to %s (%d)",
                    host == nullptr ? config_.domain.c_str() : host, rc);
    OnConnEvent(XMPP_CONN_FAIL, rc, nullptr);
  }
}

void XmppLink::ReleaseConnection(bool keep_sm_state) {
  release_conn_ = false;
  if (conn_ == nullptr) return;
  xmpp_conn_t* conn = conn_;
  conn_ = nullptr;
  if (sm_state_ != nullptr) {
    xmpp_free_sm_state(sm_state_);
    sm_state_ = nullptr;
  }
  if (keep_sm_state) sm_state_ = xmpp_conn_get_sm_state(conn);
  xmpp_handler_delete(conn, &XmppLink::StanzaHandler);
  xmpp_conn_release(conn);
}

void XmppLink::SignOut() {
  if (state_ == State::kIdle) return;
  const bool was_connected = conn_ != nullptr && xmpp_conn_is_connected(conn_);
  if (callback_depth_ > 0) {
    // Inside libstrophe's own loop: close now, release once the loop returns.
    state_ = State::kIdle;
    if (was_connected) xmpp_disconnect(conn_);
    release_conn_ = true;
    FailPendingIqs();
    ReleaseLoginGate();
    return;
  }
  state_ = State::kClosing;
  if (was_connected) {
    xmpp_disconnect(conn_);
    const auto until = Clock::now() + kSignOutLimit;
    while (conn_ != nullptr && !xmpp_conn_is_disconnected(conn_) && Clock::now() < until) {
      xmpp_run_once(ctx_, kLoopSliceMs);
    }
  }
  ReleaseConnection(false);
  FailPendingIqs();
  ReleaseLoginGate();
  state_ = State::kIdle;
}

void XmppLink::Send(const Stanza& stanza) {
  if (conn_ == nullptr || state_ != State::kOnline || !stanza) return;
  xmpp_send(conn_, stanza.get());
}

void XmppLink::SendIq(Stanza iq, IqReply reply, std::chrono::seconds limit) {
  if (conn_ == nullptr || state_ != State::kOnline) {
    reply(nullptr);
    return;
  }
  std::string id = AttrOf(iq.get(), "id");
  if (id.empty()) {
    id = NewId();
    iq.Attr("id", id);
  }
  iqs_[id] = PendingIq{std::move(reply), Clock::now() + limit};
  xmpp_send(conn_, iq.get());
}

void XmppLink::FailPendingIqs() {
  auto pending = std::move(iqs_);
  iqs_.clear();
  for (auto& [id, iq] : pending) iq.reply(nullptr);
}

void XmppLink::Tick() {
  const auto now = Clock::now();
  for (auto it = iqs_.begin(); it != iqs_.end();) {
    if (it->second.deadline <= now) {
      IqReply reply = std::move(it->second.reply);
      platform::Trace("xmpp: no answer to request %s", it->first.c_str());
      it = iqs_.erase(it);
      reply(nullptr);
    } else {
      ++it;
    }
  }
  if (state_ == State::kSigningIn && now >= sign_in_deadline_) {
    platform::Trace("xmpp: sign-in of %s took too long", jid_.c_str());
    ReleaseConnection(false);
    ReleaseLoginGate();
    state_ = State::kIdle;
    listener_->OnSignInFailed(LoginFailure::kTimeout, "the server did not answer in time");
    return;
  }
  if (state_ == State::kReconnecting && conn_ == nullptr && now >= next_attempt_) {
    Connect();
    return;
  }
  if (state_ == State::kOnline && now >= next_ping_) {
    next_ping_ = now + kPingEvery;
    Stanza ping(ctx_, "iq");
    ping.Attr("type", "get").Attr("to", config_.domain);
    ping.Add(Stanza(ctx_, "ping").Ns(ns::kPing));
    // A ping that goes unanswered means a dead connection nobody noticed.
    SendIq(std::move(ping), [this](xmpp_stanza_t* reply) {
      if (reply == nullptr && state_ == State::kOnline && conn_ != nullptr) {
        platform::Trace("xmpp: the server stopped answering; reconnecting");
        xmpp_disconnect(conn_);
      }
    });
  }
}

void XmppLink::ScheduleReconnect() {
  release_conn_ = true;
  state_ = State::kReconnecting;
  next_attempt_ = Clock::now() + backoff_;
  backoff_ = std::min<std::chrono::milliseconds>(backoff_ * 2, kLongestBackoff);
}

void XmppLink::OnConnEvent(xmpp_conn_event_t event, int error, xmpp_stream_error_t* stream_error) {
  if (event == XMPP_CONN_RAW_CONNECT) return;
  ReleaseLoginGate();
  if (event == XMPP_CONN_CONNECT) {
    const char* bound = conn_ == nullptr ? nullptr : xmpp_conn_get_bound_jid(conn_);
    bound_jid_ = bound == nullptr ? jid_ : bound;
    const bool again = ever_online_;
    ever_online_ = true;
    state_ = State::kOnline;
    backoff_ = kFirstBackoff;
    next_ping_ = Clock::now() + kPingEvery;
    listener_->OnStreamReady(again);
    return;
  }
  FailPendingIqs();
  const bool conflict = stream_error != nullptr && stream_error->type == XMPP_SE_CONFLICT;
  std::string detail;
  if (stream_error != nullptr) {
    detail = "stream error " + std::to_string(stream_error->type);
    if (stream_error->text != nullptr) detail += std::string(": ") + stream_error->text;
  } else if (error != 0) {
    detail = std::strerror(error);
  } else if (auth_failed_) {
    detail = "the server refused the credentials";
  } else {
    detail = "the server closed the connection";
  }
  switch (state_) {
    case State::kSigningIn:
      release_conn_ = true;
      state_ = State::kIdle;
      platform::Trace("xmpp: sign-in of %s failed: %s", jid_.c_str(), detail.c_str());
      listener_->OnSignInFailed(auth_failed_ ? LoginFailure::kAuth : LoginFailure::kNetwork,
                                detail);
      return;
    case State::kOnline:
    case State::kReconnecting:
      if (conflict || auth_failed_) {
        release_conn_ = true;
        state_ = State::kIdle;
        platform::Trace("xmpp: session of %s ended: %s", jid_.c_str(), detail.c_str());
        listener_->OnSessionEnded(conflict, detail);
        return;
      }
      if (state_ == State::kOnline) {
        platform::Trace("xmpp: connection lost: %s", detail.c_str());
        listener_->OnConnectionLost(detail);
      }
      ScheduleReconnect();
      return;
    case State::kIdle:
    case State::kClosing:
      return;
  }
}

void XmppLink::ReleaseLoginGate() {
  if (!holds_login_gate_) return;
  LoginGate().unlock();
  holds_login_gate_ = false;
}

void XmppLink::HandleStanza(xmpp_stanza_t* stanza) {
  const std::string name = NameOf(stanza);
  if (name != "message" && name != "presence" && name != "iq") return;  // SM nonzas
  ++stanzas_seen_;
  if (name == "iq") {
    const std::string type = AttrOf(stanza, "type");
    if (type == "result" || type == "error") {
      auto it = iqs_.find(AttrOf(stanza, "id"));
      if (it == iqs_.end()) return;  // a late or foreign answer
      IqReply reply = std::move(it->second.reply);
      iqs_.erase(it);
      reply(stanza);
      return;
    }
  }
  listener_->OnStanza(stanza);
}

void XmppLink::OnLog(xmpp_log_level_t level, const char* area, const char* msg) {
  // libstrophe reports a refused password only in its log.
  if (level == XMPP_LEVEL_ERROR && area != nullptr && std::strcmp(area, "auth") == 0) {
    auth_failed_ = true;
  }
  // IMSDK_XMPP_WIRE=1 traces the whole conversation with the server.
  static const bool wire = std::getenv("IMSDK_XMPP_WIRE") != nullptr;
  if (level >= XMPP_LEVEL_WARN || wire) {
    platform::Trace("xmpp/%s: %s", area == nullptr ? "?" : area, msg == nullptr ? "" : msg);
  }
}

void XmppLink::ConnHandler(xmpp_conn_t*, xmpp_conn_event_t event, int error,
                           xmpp_stream_error_t* stream_error, void* userdata) {
  auto* link = static_cast<XmppLink*>(userdata);
  CallbackScope scope(link->callback_depth_);
  try {
    link->OnConnEvent(event, error, stream_error);
  } catch (const std::exception& e) {
    platform::Trace("xmpp: connection event handling failed: %s", e.what());
  }
}

int XmppLink::StanzaHandler(xmpp_conn_t*, xmpp_stanza_t* stanza, void* userdata) {
  auto* link = static_cast<XmppLink*>(userdata);
  CallbackScope scope(link->callback_depth_);
  try {
    link->HandleStanza(stanza);
  } catch (const std::exception& e) {
    platform::Trace("xmpp: a stanza could not be handled (%s): %s", e.what(),
                    Describe(stanza).c_str());
  }
  return 1;
}

void XmppLink::LogHandler(void* userdata, xmpp_log_level_t level, const char* area,
                          const char* msg) {
  try {
    static_cast<XmppLink*>(userdata)->OnLog(level, area, msg);
  } catch (...) {
  }
}

}  // namespace imsdk::xmpp
