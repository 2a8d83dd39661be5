// Start, sign-in and sign-out, the stream's events and the dispatch of
// incoming stanzas.
#include "imsdk/xmpp/xmpp_backend.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "platform/trace.h"

namespace imsdk::xmpp {

XmppBackend::XmppBackend(XmppConfig config, std::string config_error)
    : config_(std::move(config)), config_error_(std::move(config_error)) {}

XmppBackend::~XmppBackend() {
  Stop();
}

void XmppBackend::Start(EventSink* sink) {
  sink_ = sink;
  if (config_error_.empty()) link_ = std::make_unique<XmppLink>(this);
}

void XmppBackend::Stop() {
  if (!link_) return;
  link_->Call([this] { EndSession(); }, std::chrono::seconds(5));
  transfers_.Stop();  // their ends post to the link
  link_.reset();      // joins the worker: no event follows
  sink_ = nullptr;
}

void XmppBackend::Emit(Event event) {
  if (sink_ != nullptr) sink_->Post(std::move(event));
}

void XmppBackend::Trace(const char* format, ...) {
  char line[1024];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);
  platform::Trace("xmpp: %s", line);
  Emit(Event{EventKind::kLog, std::string("xmpp: ") + line, 2});
}

uint64_t XmppBackend::Now() const {
  return static_cast<uint64_t>(std::time(nullptr));
}

std::string XmppBackend::UserOf(const std::string& jid) const {
  if (DomainPart(jid) != config_.domain) return "";
  return LocalPart(jid);
}

int XmppBackend::WhenSignedIn(std::function<void()> task) {
  if (phase_.load() != kSignedIn || !link_) return TIM_ERR_NOT_LOGGED_IN;
  link_->Post(std::move(task));
  return TIM_SUCC;
}

int XmppBackend::AnswerNow(std::function<int()> task) {
  if (phase_.load() != kSignedIn || !link_) return TIM_ERR_NOT_LOGGED_IN;
  struct Shared {
    std::mutex mutex;
    bool abandoned = false;
    int code = TIM_ERR_NETWORK;
  };
  auto shared = std::make_shared<Shared>();
  link_->Call(
      [this, shared, task = std::move(task)] {
        std::lock_guard lock(shared->mutex);
        if (shared->abandoned) return;
        shared->code = phase_.load() == kSignedIn ? task() : TIM_ERR_NOT_LOGGED_IN;
      },
      std::chrono::seconds(5));
  std::lock_guard lock(shared->mutex);
  shared->abandoned = true;  // a task that has not run by now never answers
  return shared->code;
}

int XmppBackend::Login(const std::string& user, const std::string& sig, ResultFn done) {
  int expected = kSignedOut;
  if (!phase_.compare_exchange_strong(expected, kSigningIn)) return TIM_ERR_ALREADY_LOGGED_IN;
  if (!link_) {
    platform::Trace("xmpp: sign-in refused: %s", config_error_.c_str());
    phase_ = kSignedOut;
    done(TIM_ERR_NETWORK, "the server configuration is unusable: " + config_error_, "");
    return TIM_SUCC;
  }
  if (!IsValidLocalPart(user)) {
    phase_ = kSignedOut;
    done(TIM_ERR_ACCOUNT_NOT_FOUND, "this user id cannot name an XMPP account", "");
    return TIM_SUCC;
  }
  link_->Post([this, user, sig, done = std::move(done)] {
    user_ = user;
    self_jid_ = JidOf(user);
    const std::string path = config_.data_folder + "/imsdk-" + self_jid_ + ".sqlite";
    if (std::string error = store_.Open(path); !error.empty()) {
      Trace("sign-in stopped: %s", error.c_str());
      phase_ = kSignedOut;
      done(TIM_ERR_FILE, error, "");
      return;
    }
    login_done_ = done;
    Trace("signing in %s", self_jid_.c_str());
    link_->SignIn(config_, self_jid_ + "/" + config_.resource, sig);
  });
  return TIM_SUCC;
}

void XmppBackend::OnStreamReady(bool) {
  if (phase_.load() == kSigningIn) {
    // The roster first: contacts with a mutual subscription are the friends,
    // and only a resource that fetched it gets its changes pushed.
    FetchRoster([this](bool ok) {
      if (!login_done_) return;
      ResultFn done = std::move(login_done_);
      login_done_ = nullptr;
      if (!ok) {
        Trace("sign-in stopped: the roster could not be read");
        EndSession();
        done(TIM_ERR_NETWORK, "the server did not send the contact list", "");
        return;
      }
      // Then the groups: the joined-group list must be there with the result.
      FetchBookmarks([this, done](bool ok) {
        if (!ok) {
          Trace("sign-in stopped: the group bookmarks could not be read");
          EndSession();
          done(TIM_ERR_NETWORK, "the server did not send the group list", "");
          return;
        }
        phase_ = kSignedIn;
        done(TIM_SUCC, "", "");
        CatchUp();
        // Offline messages and pending requests follow the initial presence,
        // so they reach the callbacks after the sign-in's result.
        SendInitialPresence();
        EnterRooms();
      });
    });
    return;
  }
  Emit(Event{EventKind::kNetworkStatus, "", kTIMConnected, 0, 0, ""});
  FetchRoster([this](bool) {
    SendInitialPresence();
    CatchUp();
    // A resumed stream is still in its rooms; entering again is harmless.
    EnterRooms();
  });
}

void XmppBackend::SendInitialPresence() {
  // The profile version lets friends notice a changed profile.
  Stanza presence(link_->ctx(), "presence");
  presence.Add(Stanza(link_->ctx(), "profile")
                   .Ns("urn:x-imsdk:profile:0")
                   .Attr("version", store_.Setting("profile_version", "0")));
  link_->Send(presence);
}

void XmppBackend::OnSignInFailed(LoginFailure why, const std::string& detail) {
  const int phase = phase_.load();
  ResultFn done = std::move(login_done_);
  login_done_ = nullptr;
  store_.Close();
  phase_ = kSignedOut;
  if (!done || phase != kSigningIn) return;
  switch (why) {
    case LoginFailure::kAuth:
      done(TIM_ERR_USER_SIG_INVALID, "the server refused the user id or signature: " + detail, "");
      break;
    case LoginFailure::kTimeout:
    case LoginFailure::kNetwork:
      done(TIM_ERR_NETWORK, "cannot reach the server: " + detail, "");
      break;
  }
}

void XmppBackend::OnConnectionLost(const std::string& detail) {
  if (phase_.load() != kSignedIn) return;
  FlushIncoming();
  for (auto& [group, room] : rooms_) room.joined = false;
  Emit(Event{EventKind::kNetworkStatus, "", kTIMDisconnected, TIM_ERR_NETWORK, 0, detail});
  Emit(Event{EventKind::kNetworkStatus, "", kTIMConnecting, 0, 0, ""});
}

void XmppBackend::OnSessionEnded(bool kicked, const std::string& detail) {
  if (phase_.load() != kSignedIn) return;
  FlushIncoming();
  Trace("the session ended: %s", detail.c_str());
  EndSession();
  if (kicked) {
    Emit(Event{EventKind::kKickedOffline});
  } else {
    Emit(Event{EventKind::kNetworkStatus, "", kTIMDisconnected, TIM_ERR_USER_SIG_INVALID, 0,
               detail});
    Emit(Event{EventKind::kUserSigExpired});
  }
}

void XmppBackend::EndSession() {
  if (!link_) return;
  link_->SignOut();
  if (login_done_) {
    ResultFn done = std::move(login_done_);
    login_done_ = nullptr;
    done(TIM_ERR_NETWORK, "signed out while signing in", "");
  }
  if (batch_open_) store_.Commit();
  batch_open_ = false;
  incoming_ = Json::Value(Json::arrayValue);
  last_archive_id_.clear();
  bounced_.clear();
  own_sends_.clear();
  roster_.clear();
  history_.clear();
  profile_versions_.clear();
  rooms_.clear();
  room_last_ids_.clear();
  store_.Close();
  phase_ = kSignedOut;
}

int XmppBackend::Logout(ResultFn done) {
  if (phase_.load() == kSignedOut || !link_) return TIM_ERR_NOT_LOGGED_IN;
  // Answered before returning, after the stream is closed: contacts see the
  // user go offline at once.
  link_->Call(
      [this] {
        FlushIncoming();
        EndSession();
      },
      std::chrono::seconds(5));
  done(TIM_SUCC, "", "");
  return TIM_SUCC;
}

void XmppBackend::OnStanza(xmpp_stanza_t* stanza) {
  if (phase_.load() == kSignedOut) return;
  const std::string name = NameOf(stanza);
  if (name == "message") {
    OnMessage(stanza);
  } else if (name == "presence") {
    if (DomainPart(AttrOf(stanza, "from")) == config_.muc_domain) {
      OnRoomPresence(stanza);
    } else {
      OnPresence(stanza);
    }
  } else if (name == "iq") {
    const std::string type = AttrOf(stanza, "type");
    if (type == "set" && ChildOf(stanza, "query", ns::kRoster) != nullptr) {
      OnRosterPush(stanza);
    } else if (type == "get" || type == "set") {
      // Every request we do not serve gets an error, as the protocol asks.
      xmpp_stanza_t* reply =
          xmpp_stanza_reply_error(stanza, "cancel", "service-unavailable", nullptr);
      if (reply != nullptr) link_->Send(Stanza::Adopt(reply));
    }
  }
}

void XmppBackend::OnIdle() {
  FlushIncoming();
}

}  // namespace imsdk::xmpp
