#include "tests/xmpp/prosody_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

extern char** environ;

namespace xmpp_test {
namespace {

// Runs a program to its end; its exit status (-1 when it cannot start).
int RunQuietly(const std::vector<std::string>& args, const std::string& log) {
  std::vector<char*> argv;
  for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  pid_t pid = -1;
  int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) return -1;
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

int FreePort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  addr.sin_port = 0;
  socklen_t len = sizeof addr;
  int port = 0;
  if (bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len) == 0) {
    port = ntohs(addr.sin_port);
  }
  close(fd);
  return port;
}

bool WaitForPort(int port, int ms) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  while (std::chrono::steady_clock::now() < until) {
    int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = htons(static_cast<uint16_t>(port));
    const bool ok = connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0;
    close(fd);
    if (ok) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

ProsodyServer::~ProsodyServer() {
  Stop();
  std::error_code ec;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, ec);
}

bool ProsodyServer::Start(const std::vector<std::string>& accounts, bool archive_in_memory) {
  char pattern[] = "/tmp/imsdk-prosody-XXXXXX";
  if (mkdtemp(pattern) == nullptr) return false;
  folder_ = pattern;
  std::filesystem::create_directories(folder_ + "/data");
  std::filesystem::create_directories(folder_ + "/certs");
  c2s_port_ = FreePort();
  http_port_ = FreePort();
  config_path_ = folder_ + "/prosody.cfg.lua";
  std::ofstream cfg(config_path_);
  if (geteuid() == 0) cfg << "run_as_root = true\n";
  cfg << "pidfile = \"" << folder_ << "/prosody.pid\"\n"
      << "data_path = \"" << folder_ << "/data\"\n"
      << "certificates = \"" << folder_ << "/certs\"\n"
      << "plugin_paths = { }\n"
      << "interfaces = { \"127.0.0.1\" }; local_interfaces = { \"127.0.0.1\" }\n"
      << "c2s_ports = { " << c2s_port_ << " }; s2s_ports = { }; component_ports = { }\n"
      << "http_ports = { " << http_port_ << " }; http_interfaces = { \"127.0.0.1\" }\n"
      << "https_ports = { }; https_interfaces = { }\n"
      << "modules_enabled = { \"roster\"; \"saslauth\"; \"disco\"; \"ping\"; \"carbons\";\n"
      << "  \"pep\"; \"vcard4\"; \"vcard_legacy\"; \"private\"; \"blocklist\"; \"mam\";\n"
      << "  \"smacks\"; \"offline\"; \"time\"; \"version\"; \"posix\" }\n"
      << "modules_disabled = { \"s2s\"; \"tls\" }\n"
      << "c2s_require_encryption = false; allow_unencrypted_plain_auth = true\n"
      << "authentication = \"internal_hashed\"\n"
      << (archive_in_memory ? "storage = { archive = \"memory\" }\n" : "storage = \"internal\"\n")
      << "archive_expires_after = \"never\"; default_archive_policy = true\n"
      << "max_archive_query_results = 50\n"
      << "limits = { }\n"
      << "log = { { levels = { min = \"info\" }, to = \"file\", filename = \"" << folder_
      << "/prosody.log\" } }\n"
      << "http_default_host = \"upload.localhost\"\n"
      << "http_external_url = \"http://127.0.0.1:" << http_port_ << "/\"\n"
      << "VirtualHost \"localhost\"\n"
      << "Component \"conference.localhost\" \"muc\"\n"
      << "  modules_enabled = { \"muc_mam\" }\n"
      << "  muc_room_default_persistent = true; muc_room_default_members_only = true\n"
      << "  muc_room_default_public = false; muc_log_by_default = true\n"
      << "  restrict_room_creation = \"local\"\n"
      << "Component \"upload.localhost\" \"http_file_share\"\n"
      << "  http_file_share_size_limit = 10*1024*1024\n";
  cfg.close();
  for (const auto& user : accounts) {
    if (RunQuietly(
            {"prosodyctl", "--config", config_path_, "register", user, domain(), PasswordOf(user)},
            folder_ + "/prosodyctl.log") != 0) {
      std::fprintf(stderr, "prosody: cannot register %s (see %s/prosodyctl.log)\n", user.c_str(),
                   folder_.c_str());
      return false;
    }
  }
  return Launch();
}

bool ProsodyServer::Launch() {
  std::vector<std::string> args = {"prosody", "-F", "--config", config_path_};
  std::vector<char*> argv;
  for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  const std::string out = folder_ + "/prosody.out";
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  int rc = posix_spawnp(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) {
    pid_ = -1;
    std::fprintf(stderr, "prosody: cannot start (is it installed?)\n");
    return false;
  }
  if (!WaitForPort(c2s_port_, 15000)) {
    std::fprintf(stderr, "prosody: not listening on %d (see %s)\n", c2s_port_, out.c_str());
    Stop();
    return false;
  }
  return true;
}

void ProsodyServer::Stop() {
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
}

bool ProsodyServer::Restart() {
  Stop();
  return Launch();
}

void ProsodyServer::WriteSdkConfig(const std::string& config_folder) const {
  std::filesystem::create_directories(config_folder);
  std::ofstream out(config_folder + "/imsdk.json");
  out << "{\"backend\": \"xmpp\", \"domain\": \"" << domain() << "\", \"host\": \"127.0.0.1\", "
      << "\"port\": " << c2s_port_ << ", \"resource\": \"desktop\"}\n";
}

}  // namespace xmpp_test
