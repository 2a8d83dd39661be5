#pragma once
// A bare libstrophe client on its own thread: it only sends bursts of chat
// messages and counts the ones it receives (the transport's limit).
#include <strophe.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

class BareClient {
 public:
  // Signs in (plaintext, loopback); ok() tells whether it worked.
  BareClient(const std::string& jid, const std::string& password, int port);
  ~BareClient();
  bool ok() const { return online_; }
  // Sends `count` chat messages to `to` from the client's thread.
  void SendBurst(const std::string& to, int count);
  uint64_t received() const { return received_.load(); }

 private:
  static int OnMessage(xmpp_conn_t* conn, xmpp_stanza_t* st, void* self);
  static void OnConn(xmpp_conn_t* conn, xmpp_conn_event_t ev, int err, xmpp_stream_error_t* se,
                     void* self);
  xmpp_ctx_t* ctx_ = nullptr;
  xmpp_conn_t* conn_ = nullptr;
  std::atomic<bool> online_{false};
  std::atomic<bool> failed_{false};
  std::atomic<bool> stop_{false};
  std::atomic<uint64_t> received_{0};
  std::mutex mutex_;
  std::string burst_to_;
  int burst_count_ = 0;
  uint64_t sent_ = 0;
  std::thread thread_;
};
