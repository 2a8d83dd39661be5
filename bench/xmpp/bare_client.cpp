#include "bench/xmpp/bare_client.h"

#include <chrono>
#include <cstring>

BareClient::BareClient(const std::string& jid, const std::string& password, int port) {
  xmpp_initialize();
  ctx_ = xmpp_ctx_new(nullptr, nullptr);
  conn_ = xmpp_conn_new(ctx_);
  xmpp_conn_set_flags(conn_, XMPP_CONN_FLAG_DISABLE_SM);
  xmpp_conn_set_jid(conn_, jid.c_str());
  xmpp_conn_set_pass(conn_, password.c_str());
  xmpp_handler_add(conn_, &BareClient::OnMessage, nullptr, "message", nullptr, this);
  xmpp_connect_client(conn_, "127.0.0.1", static_cast<unsigned short>(port), &BareClient::OnConn,
                      this);
  thread_ = std::thread([this] {
    while (!stop_) {
      {
        std::lock_guard lock(mutex_);
        for (; burst_count_ > 0; --burst_count_) {
          const std::string id = "b" + std::to_string(++sent_);
          xmpp_stanza_t* msg = xmpp_message_new(ctx_, "chat", burst_to_.c_str(), id.c_str());
          xmpp_message_set_body(msg, ("message " + id).c_str());
          xmpp_send(conn_, msg);
          xmpp_stanza_release(msg);
        }
      }
      xmpp_run_once(ctx_, 5);
    }
  });
  const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!online_ && !failed_ && std::chrono::steady_clock::now() < until) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

BareClient::~BareClient() {
  stop_ = true;
  thread_.join();
  xmpp_conn_release(conn_);
  xmpp_ctx_free(ctx_);
}

void BareClient::SendBurst(const std::string& to, int count) {
  std::lock_guard lock(mutex_);
  burst_to_ = to;
  burst_count_ = count;
}

int BareClient::OnMessage(xmpp_conn_t*, xmpp_stanza_t* st, void* self) {
  if (xmpp_stanza_get_child_by_name(st, "body") != nullptr) {
    static_cast<BareClient*>(self)->received_.fetch_add(1);
  }
  return 1;
}

void BareClient::OnConn(xmpp_conn_t* conn, xmpp_conn_event_t ev, int, xmpp_stream_error_t*,
                        void* self) {
  auto* client = static_cast<BareClient*>(self);
  if (ev == XMPP_CONN_CONNECT) {
    xmpp_stanza_t* presence = xmpp_presence_new(xmpp_conn_get_context(conn));
    xmpp_send(conn, presence);
    xmpp_stanza_release(presence);
    client->online_ = true;
  } else if (ev != XMPP_CONN_RAW_CONNECT) {
    client->online_ = false;
    client->failed_ = true;
  }
}
