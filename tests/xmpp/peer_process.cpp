#include "tests/xmpp/peer_process.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

extern char** environ;

namespace xmpp_test {

PeerProcess::PeerProcess(const ProsodyServer& server, const std::string& user,
                         const std::string& resource) {
  int in[2], out[2];
  if (pipe(in) != 0 || pipe(out) != 0) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], 0);
  posix_spawn_file_actions_adddup2(&actions, out[1], 1);
  posix_spawn_file_actions_addclose(&actions, in[1]);
  posix_spawn_file_actions_addclose(&actions, out[0]);
  const std::string script = std::string(IM_XMPP_PEER_SCRIPT);
  const std::string jid =
      user + "@" + ProsodyServer::domain() + (resource.empty() ? "" : "/" + resource);
  const std::string password = ProsodyServer::PasswordOf(user);
  const std::string port = std::to_string(server.c2s_port());
  std::vector<char*> argv = {const_cast<char*>("/usr/bin/python3"),
                             const_cast<char*>(script.c_str()),
                             const_cast<char*>(jid.c_str()),
                             const_cast<char*>(password.c_str()),
                             const_cast<char*>("127.0.0.1"),
                             const_cast<char*>(port.c_str()),
                             nullptr};
  if (posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  close(out[1]);
  to_child_ = in[1];
  from_child_ = out[0];
  if (pid_ < 0) {
    std::fprintf(stderr, "peer: cannot start %s\n", argv[0]);
    return;
  }
  reader_ = std::thread([this] { ReadLoop(); });
  ready_ = !WaitForEvent("ready", 30).isNull();
}

PeerProcess::~PeerProcess() {
  if (to_child_ >= 0) close(to_child_);  // end of input: the peer signs out
  if (pid_ > 0) {
    for (int i = 0; i < 40; ++i) {
      if (waitpid(pid_, nullptr, WNOHANG) == pid_) {
        pid_ = -1;
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
  }
  if (reader_.joinable()) reader_.join();
  if (from_child_ >= 0) close(from_child_);
}

void PeerProcess::ReadLoop() {
  std::string pending;
  char buf[4096];
  for (;;) {
    ssize_t n = read(from_child_, buf, sizeof buf);
    if (n <= 0) return;
    pending.append(buf, static_cast<size_t>(n));
    size_t nl;
    while ((nl = pending.find('\n')) != std::string::npos) {
      std::string line = pending.substr(0, nl);
      pending.erase(0, nl + 1);
      Json::Value event;
      if (!Json::Reader().parse(line, event)) continue;  // library chatter
      std::lock_guard lock(mutex_);
      events_.push_back(event);
      changed_.notify_all();
    }
  }
}

void PeerProcess::Command(const Json::Value& command) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  std::string line = Json::writeString(writer, command) + "\n";
  const char* p = line.data();
  size_t left = line.size();
  while (left > 0 && to_child_ >= 0) {
    ssize_t n = write(to_child_, p, left);
    if (n <= 0) return;
    p += n;
    left -= static_cast<size_t>(n);
  }
}

void PeerProcess::Send(const std::string& to, const std::string& body,
                       const std::string& extra_xml) {
  Json::Value cmd;
  cmd["cmd"] = "send";
  cmd["to"] = to + "@" + ProsodyServer::domain();
  cmd["body"] = body;
  if (!extra_xml.empty()) cmd["extra"] = extra_xml;
  Command(cmd);
}

Json::Value PeerProcess::WaitFor(const std::function<bool(const Json::Value&)>& match,
                                 int seconds) {
  std::unique_lock lock(mutex_);
  Json::Value found;
  changed_.wait_for(lock, std::chrono::seconds(seconds), [&] {
    for (const auto& e : events_) {
      if (match(e)) {
        found = e;
        return true;
      }
    }
    return false;
  });
  return found;
}

Json::Value PeerProcess::WaitForEvent(const std::string& event, int seconds) {
  return WaitFor([&](const Json::Value& e) { return e["event"].asString() == event; }, seconds);
}

std::vector<Json::Value> PeerProcess::Events() const {
  std::lock_guard lock(mutex_);
  return events_;
}

}  // namespace xmpp_test
