#pragma once
// The module's data tree and resource folders, prepared once per sign-in.
//
//   <module>/DuiLibRes/img           images        (not created)
//   <module>/DuiLibRes/emoji/        emoticons     (not created)
//   <docs>/Vantorel/log              SDK log, shared by all users
//   <docs>/Vantorel/cfg              SDK config, shared by all users
//   <docs>/Vantorel/<user>/cache/face   avatars
//   <docs>/Vantorel/<user>/db           Chat.db
//   <docs>/Vantorel/<user>/cache/recv   downloads, unless the user chose
//                                       another folder (setting DownloadPath)
//
// Paths are not limited to 260 characters here: that was a buffer size of
// the original platform, and POSIX file systems take longer paths.
// Every getter returns a copy and may be called from any thread.

#include <mutex>

#include "platform/settings_store.h"
#include "platform/strings.h"

namespace platform {

inline const WString kSettingsKey = u"Software\\Ostrel";
inline const WString kDownloadPathValue = u"DownloadPath";

class DataFolders {
 public:
  explicit DataFolders(SettingsStore& settings) : settings_(settings) {}

  // The module's one instance, on the current user's settings.
  static DataFolders& Instance();

  // Builds every path for `userId` (module, image, emoticon, log, face,
  // config, db, download), creates the five data folders, then applies the
  // stored download folder when it is present and non-empty. An id that
  // cannot name a folder of its own (platform/user_id.h) is refused with a
  // trace before anything is built or created: false, and nothing changes.
  bool Prepare(const WString& userId);

  // Makes `path` the download folder for this process (the settings dialog).
  void SetDownloadPath(const WString& path);
  // Stores `path` as the user's download folder; false when storing failed.
  bool SaveDownloadPath(const WString& path);

  WString GetModulePath() const;
  WString GetDownloadPath() const;
  WString GetFacePath() const;
  WString GetImagePath() const;
  WString GetLogPath() const;
  WString GetConfigPath() const;
  WString GetDbPath() const;
  WString GetEmojiPath() const;

 private:
  void ApplyStoredDownloadPath();

  SettingsStore& settings_;
  mutable std::mutex mutex_;
  WString module_, image_, emoji_, log_, face_, config_, db_, download_;
};

}  // namespace platform
