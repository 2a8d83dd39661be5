#pragma once
// One XMPP client connection on its own worker thread. libstrophe is not
// thread-safe, so its context, connection and every stanza live on the
// worker; other threads hand it work with Post(). The link signs in, keeps
// the stream alive (pings, stream management), comes back after a lost
// connection and tracks the answers to IQ requests.
#include <strophe.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "imsdk/xmpp/stanza.h"
#include "imsdk/xmpp/xmpp_config.h"

namespace imsdk::xmpp {

enum class LoginFailure { kNetwork, kAuth, kTimeout };

// What the link reports, always on its worker thread.
class LinkListener {
 public:
  virtual ~LinkListener() = default;
  // The stream is authenticated and bound (after sign-in and after each return).
  // `again` is false at sign-in and true after each return.
  virtual void OnStreamReady(bool again) = 0;
  // The sign-in started with SignIn() failed; the link is idle again.
  virtual void OnSignInFailed(LoginFailure why, const std::string& detail) = 0;
  // An established stream broke; the link is trying to come back.
  virtual void OnConnectionLost(const std::string& detail) = 0;
  // The session ended for good: the account signed in elsewhere (`kicked`)
  // or the server refused the password on return.
  virtual void OnSessionEnded(bool kicked, const std::string& detail) = 0;
  // A message, presence or IQ request that no pending request claimed.
  virtual void OnStanza(xmpp_stanza_t* stanza) = 0;
  // After each pass of the loop: a place to flush batched work.
  virtual void OnIdle() = 0;
};

class XmppLink {
 public:
  // Answer to an IQ: the reply stanza, or null when the connection was lost
  // or no answer came in time.
  using IqReply = std::function<void(xmpp_stanza_t* reply)>;

  explicit XmppLink(LinkListener* listener);
  ~XmppLink();  // closes the stream and joins the worker
  XmppLink(const XmppLink&) = delete;
  XmppLink& operator=(const XmppLink&) = delete;

  // Runs `task` on the worker (dropped once the link is stopping).
  void Post(std::function<void()> task);
  // Runs `task` on the worker and waits for it (at most `limit`); false when
  // it did not run in time.
  bool Call(std::function<void()> task, std::chrono::milliseconds limit);
  bool OnWorker() const { return std::this_thread::get_id() == worker_.get_id(); }

  // ---- Worker thread only. ----
  void SignIn(const XmppConfig& config, const std::string& jid, const std::string& password);
  // Closes the stream (contacts see the user go offline) and waits briefly
  // for the server to close its side; no reconnection follows.
  void SignOut();
  bool online() const { return state_ == State::kOnline; }
  xmpp_ctx_t* ctx() const { return ctx_; }
  const std::string& bound_jid() const { return bound_jid_; }
  void Send(const Stanza& stanza);
  // Sends an IQ (an id is set when it has none) and calls `reply` once.
  void SendIq(Stanza iq, IqReply reply, std::chrono::seconds limit = std::chrono::seconds(20));
  std::string NewId();

 private:
  enum class State { kIdle, kSigningIn, kOnline, kReconnecting, kClosing };
  struct PendingIq {
    IqReply reply;
    std::chrono::steady_clock::time_point deadline;
  };

  void Run();
  void DrainTasks();
  void ReadAvailable();
  void Connect();
  void ReleaseConnection(bool keep_sm_state);
  void ReleaseLoginGate();
  void OnConnEvent(xmpp_conn_event_t event, int error, xmpp_stream_error_t* stream_error);
  void HandleStanza(xmpp_stanza_t* stanza);
  void FailPendingIqs();
  void Tick();
  void ScheduleReconnect();
  void OnLog(xmpp_log_level_t level, const char* area, const char* msg);

  static void ConnHandler(xmpp_conn_t* conn, xmpp_conn_event_t event, int error,
                          xmpp_stream_error_t* stream_error, void* userdata);
  static int StanzaHandler(xmpp_conn_t* conn, xmpp_stanza_t* stanza, void* userdata);
  static void LogHandler(void* userdata, xmpp_log_level_t level, const char* area, const char* msg);

  LinkListener* listener_;
  xmpp_log_t log_{};
  xmpp_ctx_t* ctx_ = nullptr;
  xmpp_conn_t* conn_ = nullptr;
  XmppConfig config_;
  std::string jid_, password_, bound_jid_;
  State state_ = State::kIdle;
  bool auth_failed_ = false;
  bool release_conn_ = false;
  int callback_depth_ = 0;  // >0 while libstrophe runs one of our handlers
  xmpp_sm_state_t* sm_state_ = nullptr;
  bool holds_login_gate_ = false;
  bool ever_online_ = false;
  std::chrono::steady_clock::time_point sign_in_deadline_{};
  std::chrono::steady_clock::time_point next_attempt_{};
  std::chrono::steady_clock::time_point next_ping_{};
  std::chrono::milliseconds backoff_{0};
  std::map<std::string, PendingIq> iqs_;
  uint64_t next_id_ = 0;
  uint64_t stanzas_seen_ = 0;
  std::string id_prefix_;

  std::mutex mutex_;
  std::condition_variable tasks_changed_;
  std::deque<std::function<void()>> tasks_;
  bool stopping_ = false;
  std::thread worker_;
};

}  // namespace imsdk::xmpp
