#pragma once
// The per-user settings store that stands in for the registry. Keys are
// registry-style paths ("Software\\Ostrel"); values are strings.
//
// POSIX layout: one JSON object per key in
// $XDG_CONFIG_HOME/im-chat-registry/<key with '\' as '/'>.json
// (XDG_CONFIG_HOME defaults to ~/.config). Writes go to a temporary file
// that is synced and renamed over the old one, so a crash leaves either the
// old or the new file. A missing, unreadable or corrupt file, or a value of
// another type, reads as "no value".

#include <optional>
#include <string>

#include "platform/strings.h"

namespace platform {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  virtual std::optional<WString> ReadString(const WString& key, const WString& name) const = 0;
  virtual bool WriteString(const WString& key, const WString& name, const WString& value) = 0;
};

class FileSettingsStore : public SettingsStore {
 public:
  // `root` empty: the default folder described above, resolved per call so
  // that a changed environment is honoured.
  explicit FileSettingsStore(std::string root = {});

  std::optional<WString> ReadString(const WString& key, const WString& name) const override;
  bool WriteString(const WString& key, const WString& name, const WString& value) override;

  // Where the value of `key` lives.
  std::string FileFor(const WString& key) const;

 private:
  std::string root_;
};

// The store of the current OS user.
SettingsStore& UserSettings();

}  // namespace platform
