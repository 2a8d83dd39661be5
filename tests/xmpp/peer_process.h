#pragma once
// The slixmpp peer (peer.py) as a child process: commands in, events out.
#include <json/json.h>
#include <sys/types.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/xmpp/prosody_server.h"

namespace xmpp_test {

class PeerProcess {
 public:
  // Signs `user` in at `server` (with `resource`, else a random one) and
  // waits until it is ready.
  PeerProcess(const ProsodyServer& server, const std::string& user,
              const std::string& resource = "");
  ~PeerProcess();
  PeerProcess(const PeerProcess&) = delete;
  PeerProcess& operator=(const PeerProcess&) = delete;

  bool ready() const { return ready_; }
  void Command(const Json::Value& command);
  // Sends a chat message to `to` (a user id of the server's domain).
  void Send(const std::string& to, const std::string& body, const std::string& extra_xml = "");
  // Waits (up to `seconds`) for an event matching `match`; null when none came.
  Json::Value WaitFor(const std::function<bool(const Json::Value&)>& match, int seconds = 15);
  Json::Value WaitForEvent(const std::string& event, int seconds = 15);
  std::vector<Json::Value> Events() const;

 private:
  void ReadLoop();
  pid_t pid_ = -1;
  int to_child_ = -1;
  int from_child_ = -1;
  bool ready_ = false;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Json::Value> events_;
  std::thread reader_;
};

}  // namespace xmpp_test
