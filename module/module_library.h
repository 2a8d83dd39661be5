#pragma once
// The host's side of loading the chat module: dlopen of the library and the
// eight exports resolved by name, as a real host does. Unloading runs the
// library's unload (TIMUninit, the window goes); do it while the host's
// QApplication still exists.

#include <dlfcn.h>

#include <string>

#include "module/im_exports.h"

namespace im_exports {

class ModuleLibrary {
 public:
  explicit ModuleLibrary(const std::string& path) {
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ == nullptr) {
      error_ = dlerror();
      return;
    }
    Resolve(createWindow, "g_CreateWindow");
    Resolve(login, "LoginIm");
    Resolve(logout, "LogOutIm");
    Resolve(display, "DisplayIm");
    Resolve(move, "MoveIm");
    Resolve(hide, "HideIm");
    Resolve(entryShare, "EntryShareChatIm");
    Resolve(exitShare, "ExitShareChatIm");
  }
  ~ModuleLibrary() { Unload(); }
  ModuleLibrary(const ModuleLibrary&) = delete;
  ModuleLibrary& operator=(const ModuleLibrary&) = delete;

  void Unload() {
    if (handle_ != nullptr) dlclose(handle_);
    handle_ = nullptr;
  }
  bool ok() const { return handle_ != nullptr && error_.empty(); }
  const std::string& error() const { return error_; }
  void* handle() const { return handle_; }

  CreateWindowFn createWindow = nullptr;
  LoginImFn login = nullptr;
  LogOutImFn logout = nullptr;
  DisplayImFn display = nullptr;
  MoveImFn move = nullptr;
  HideImFn hide = nullptr;
  EntryShareChatImFn entryShare = nullptr;
  ExitShareChatImFn exitShare = nullptr;

 private:
  template <typename Fn>
  void Resolve(Fn& fn, const char* name) {
    fn = reinterpret_cast<Fn>(dlsym(handle_, name));
    if (fn == nullptr) error_ += std::string("missing export ") + name + "; ";
  }

  void* handle_ = nullptr;
  std::string error_;
};

}  // namespace im_exports
