#pragma once
// Which backend TIMInit starts, and the XMPP server's settings. The embedded
// engine runs unless a configuration file asks for a server:
// <sdk_config_config_file_path>/imsdk.json, else the file named by the
// environment variable IMSDK_CONFIG.
#include <json/json.h>

#include <optional>
#include <string>

namespace imsdk::xmpp {

struct XmppConfig {
  std::string domain;
  std::string host;  // empty: the domain's DNS records decide
  int port = 0;      // 0: the default (5222 or DNS SRV)
  std::string resource = "desktop";
  std::string muc_domain;
  std::string upload_domain;
  bool allow_plaintext = false;
  // Where the local database lives (conversations, unread counts, friend
  // requests): "data_folder" or the folder that holds the configuration file.
  std::string data_folder;
  // True when `host` (or, without it, `domain`) names a loopback address.
  bool IsLoopback() const;
  // Plaintext is accepted on loopback or when the configuration says so.
  bool PlaintextAllowed() const { return allow_plaintext || IsLoopback(); }
};

struct BackendChoice {
  // Empty: the embedded engine.
  std::optional<XmppConfig> xmpp;
  // Set when a configuration file exists but cannot be used; the SDK then
  // starts with a backend that refuses every sign-in with this text.
  std::string error;
  std::string file;  // the file that was read, for traces
};

// Reads the choice for the configuration folder (may be empty).
BackendChoice ChooseBackend(const std::string& config_folder);
// Parses one configuration object; returns the error text or "".
std::string ParseXmppConfig(const Json::Value& value, const std::string& file_folder,
                            XmppConfig* out);

}  // namespace imsdk::xmpp
