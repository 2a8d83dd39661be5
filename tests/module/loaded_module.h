#pragma once
// The chat module loaded as a host loads it: dlopen of the built library and
// the eight exports resolved by name. Unloading runs the library's unload.

#include <dlfcn.h>

#include <string>

#include "module/im_exports.h"

namespace module_test {

class LoadedModule {
 public:
  LoadedModule() {
    handle_ = dlopen(IM_MODULE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
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
  ~LoadedModule() { Unload(); }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

  void Unload() {
    if (handle_ != nullptr) dlclose(handle_);
    handle_ = nullptr;
  }
  bool ok() const { return handle_ != nullptr && error_.empty(); }
  const std::string& error() const { return error_; }
  void* handle() const { return handle_; }

  im_exports::CreateWindowFn createWindow = nullptr;
  im_exports::LoginImFn login = nullptr;
  im_exports::LogOutImFn logout = nullptr;
  im_exports::DisplayImFn display = nullptr;
  im_exports::MoveImFn move = nullptr;
  im_exports::HideImFn hide = nullptr;
  im_exports::EntryShareChatImFn entryShare = nullptr;
  im_exports::ExitShareChatImFn exitShare = nullptr;

 private:
  template <typename Fn>
  void Resolve(Fn& fn, const char* name) {
    fn = reinterpret_cast<Fn>(dlsym(handle_, name));
    if (fn == nullptr) error_ += std::string("missing export ") + name + "; ";
  }

  void* handle_ = nullptr;
  std::string error_;
};

}  // namespace module_test
