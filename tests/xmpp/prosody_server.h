#pragma once
// A throwaway Prosody for tests and the demo: loopback only, free ports,
// its data in a temporary folder, no TLS, the message archive on.
#include <sys/types.h>

#include <string>
#include <vector>

namespace xmpp_test {

class ProsodyServer {
 public:
  ProsodyServer() = default;
  ~ProsodyServer();
  ProsodyServer(const ProsodyServer&) = delete;
  ProsodyServer& operator=(const ProsodyServer&) = delete;

  // Writes the configuration, registers `accounts` (password "pw-<id>")
  // and starts the server; false (with the reason on stderr) on failure.
  // `archive_in_memory`: the message archive lives in memory (Prosody's file
  // archive slows down as it grows, which would skew measurements).
  bool Start(const std::vector<std::string>& accounts, bool archive_in_memory = false);
  // Stops the process (clients see the connection reset).
  void Stop();
  // Starts it again on the same ports with the same data.
  bool Restart();
  bool running() const { return pid_ > 0; }

  int c2s_port() const { return c2s_port_; }
  static const char* domain() { return "localhost"; }
  static std::string PasswordOf(const std::string& user) { return "pw-" + user; }
  const std::string& folder() const { return folder_; }
  // Writes imsdk.json for the SDK into `config_folder`.
  void WriteSdkConfig(const std::string& config_folder) const;

 private:
  bool Launch();
  std::string folder_;
  std::string config_path_;
  int c2s_port_ = 0;
  int http_port_ = 0;
  pid_t pid_ = -1;
};

// A loopback port nobody listens on right now.
int FreePort();
// True once something accepts connections on 127.0.0.1:port (waits up to `ms`).
bool WaitForPort(int port, int ms);

}  // namespace xmpp_test
