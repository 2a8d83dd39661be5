#include "ui/kit/resources.h"

#include <mutex>

#include <QCoreApplication>

#include "ui/kit/attributes.h"

namespace ui {
namespace {

std::mutex g_mutex;
std::string g_root;  // guarded by g_mutex

}  // namespace

void SetResourceRoot(std::string_view folder) {
  std::lock_guard lock(g_mutex);
  g_root = std::string(folder);
}

std::string GetResourceRoot() {
  {
    std::lock_guard lock(g_mutex);
    if (!g_root.empty()) return g_root;
  }
  return QCoreApplication::applicationDirPath().toStdString();
}

std::string ResourcePath(std::string_view relative) {
  return ResolveSkinPath(relative, GetResourceRoot());
}

}  // namespace ui
