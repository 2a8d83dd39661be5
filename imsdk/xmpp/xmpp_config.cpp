#include "imsdk/xmpp/xmpp_config.h"

#include <arpa/inet.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "imsdk/json_util.h"

namespace imsdk::xmpp {
namespace {

constexpr const char* kFileName = "imsdk.json";

bool IsLoopbackName(const std::string& name) {
  if (name == "localhost" || name == "::1") return true;
  in_addr v4{};
  if (inet_pton(AF_INET, name.c_str(), &v4) == 1) {
    return (ntohl(v4.s_addr) >> 24) == 127;
  }
  return false;
}

// A JID part must not carry the characters that separate JID parts.
bool IsPlainDomain(const std::string& s) {
  return !s.empty() && s.find_first_of("@/ \t\r\n\"'<>&") == std::string::npos;
}

}  // namespace

bool XmppConfig::IsLoopback() const {
  return IsLoopbackName(host.empty() ? domain : host);
}

std::string ParseXmppConfig(const Json::Value& value, const std::string& file_folder,
                            XmppConfig* out) {
  if (!value.isObject()) return "the configuration is not a JSON object";
  ParamReader reader(value);
  const std::string backend = reader.String("backend");
  XmppConfig config;
  config.domain = reader.String("domain");
  config.host = reader.String("host");
  const int64_t port = reader.Int64("port", 0);
  config.resource = reader.String("resource", "desktop");
  config.muc_domain = reader.String("muc_domain");
  config.upload_domain = reader.String("upload_domain");
  config.allow_plaintext = reader.Bool("allow_plaintext", false);
  config.data_folder = reader.String("data_folder", file_folder);
  if (!reader.ok()) return "a configuration value has the wrong type";
  if (backend != "xmpp") return "unknown backend \"" + backend + "\" (only \"xmpp\" is known)";
  if (!IsPlainDomain(config.domain)) return "\"domain\" is missing or not a domain name";
  if (!config.host.empty() && !IsPlainDomain(config.host)) return "\"host\" is not a host name";
  if (port < 0 || port > 65535) return "\"port\" is outside 0..65535";
  config.port = static_cast<int>(port);
  if (config.resource.empty() || config.resource.size() > 64) {
    return "\"resource\" must be 1 to 64 bytes";
  }
  if (config.muc_domain.empty()) config.muc_domain = "conference." + config.domain;
  if (!IsPlainDomain(config.muc_domain)) return "\"muc_domain\" is not a domain name";
  if (config.upload_domain.empty()) config.upload_domain = "upload." + config.domain;
  if (!IsPlainDomain(config.upload_domain)) return "\"upload_domain\" is not a domain name";
  if (config.data_folder.empty()) return "no folder for the local database";
  *out = std::move(config);
  return "";
}

BackendChoice ChooseBackend(const std::string& config_folder) {
  BackendChoice choice;
  std::filesystem::path file;
  std::error_code ec;
  if (!config_folder.empty() &&
      std::filesystem::is_regular_file(std::filesystem::path(config_folder) / kFileName, ec)) {
    file = std::filesystem::path(config_folder) / kFileName;
  } else if (const char* env = std::getenv("IMSDK_CONFIG"); env != nullptr && *env != '\0') {
    file = env;
  } else {
    return choice;
  }
  choice.file = file.string();
  std::ifstream in(file);
  if (!in) {
    choice.error = "cannot read the configuration file " + choice.file;
    return choice;
  }
  std::stringstream text;
  text << in.rdbuf();
  Json::Value value;
  if (!ParseJson(text.str(), &value)) {
    choice.error = "the configuration file " + choice.file + " is not JSON";
    return choice;
  }
  XmppConfig config;
  std::string folder = std::filesystem::absolute(file, ec).parent_path().string();
  std::string error = ParseXmppConfig(value, folder, &config);
  if (!error.empty()) {
    choice.error = choice.file + ": " + error;
    return choice;
  }
  choice.xmpp = std::move(config);
  return choice;
}

}  // namespace imsdk::xmpp
