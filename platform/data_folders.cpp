#include "platform/data_folders.h"

#include "platform/folders.h"
#include "platform/trace.h"
#include "platform/user_id.h"

namespace platform {
namespace {

WString Under(const WString& base, std::initializer_list<std::u16string_view> parts) {
  WString path = base;
  for (auto part : parts) path = JoinPath(path, WString(part));
  return path;
}

}  // namespace

DataFolders& DataFolders::Instance() {
  static DataFolders* folders = new DataFolders(UserSettings());
  return *folders;
}

bool DataFolders::Prepare(const WString& userId) {
  if (const std::string problem = UserIdProblem(userId); !problem.empty()) {
    Trace("DataFolders::Prepare: refused the user id \"%s\": %s", Utf16ToUtf8(userId).c_str(),
          problem.c_str());
    return false;
  }
  const WString module = ExecutableFolder();
  const WString docs = CommonDocumentsFolder();
  {
    std::lock_guard lock(mutex_);
    module_ = module;
    image_ = Under(module, {u"DuiLibRes", u"img"});
    emoji_ = Under(module, {u"DuiLibRes", u"emoji"}) + kPathSeparator;
    log_ = Under(docs, {u"Vantorel", u"log"});
    face_ = Under(docs, {u"Vantorel", userId, u"cache", u"face"});
    config_ = Under(docs, {u"Vantorel", u"cfg"});
    db_ = Under(docs, {u"Vantorel", userId, u"db"});
    download_ = Under(docs, {u"Vantorel", userId, u"cache", u"recv"});
  }
  for (const WString& folder :
       {GetLogPath(), GetFacePath(), GetConfigPath(), GetDbPath(), GetDownloadPath()}) {
    if (!FolderExists(folder)) CreateFolders(folder);
  }
  ApplyStoredDownloadPath();
  return true;
}

void DataFolders::ApplyStoredDownloadPath() {
  std::optional<WString> stored = settings_.ReadString(kSettingsKey, kDownloadPathValue);
  if (!stored || stored->empty()) return;
  SetDownloadPath(*stored);
  if (!FolderExists(*stored)) CreateFolders(*stored);
}

void DataFolders::SetDownloadPath(const WString& path) {
  std::lock_guard lock(mutex_);
  download_ = path;
}

bool DataFolders::SaveDownloadPath(const WString& path) {
  return settings_.WriteString(kSettingsKey, kDownloadPathValue, path);
}

#define IM_GETTER(name, field)        \
  WString DataFolders::name() const { \
    std::lock_guard lock(mutex_);     \
    return field;                     \
  }
IM_GETTER(GetModulePath, module_)
IM_GETTER(GetDownloadPath, download_)
IM_GETTER(GetFacePath, face_)
IM_GETTER(GetImagePath, image_)
IM_GETTER(GetLogPath, log_)
IM_GETTER(GetConfigPath, config_)
IM_GETTER(GetDbPath, db_)
IM_GETTER(GetEmojiPath, emoji_)
#undef IM_GETTER

}  // namespace platform
