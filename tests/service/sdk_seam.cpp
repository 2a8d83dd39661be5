#include "tests/service/sdk_seam.h"

#include <dlfcn.h>

#include <mutex>

#include "imsdk/im_sdk.h"

namespace sdk_seam {
namespace {

enum class SendMode { kPassOn, kAnswerInside, kDrop };

struct State {
  std::mutex mutex;
  bool holdLogin = false;
  TIMCommCallback heldCallback = nullptr;
  void* heldUser = nullptr;
  SendMode send = SendMode::kPassOn;
  int32_t sendCode = 0;
};

State& Seam() {
  static State state;
  return state;
}

template <typename F>
F Next(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void HoldNextLoginResult() {
  std::lock_guard lock(Seam().mutex);
  Seam().holdLogin = true;
}

bool ReleaseLoginResult(int32_t code) {
  TIMCommCallback callback = nullptr;
  void* user = nullptr;
  {
    std::lock_guard lock(Seam().mutex);
    std::swap(callback, Seam().heldCallback);
    std::swap(user, Seam().heldUser);
  }
  if (callback == nullptr) return false;
  callback(code, code == 0 ? "" : "refused", "", user);
  return true;
}

void AnswerSendsInsideTheCall(int32_t code) {
  std::lock_guard lock(Seam().mutex);
  Seam().send = SendMode::kAnswerInside;
  Seam().sendCode = code;
}

void DropSendResults() {
  std::lock_guard lock(Seam().mutex);
  Seam().send = SendMode::kDrop;
}

void Reset() {
  std::lock_guard lock(Seam().mutex);
  Seam().holdLogin = false;
  Seam().heldCallback = nullptr;
  Seam().heldUser = nullptr;
  Seam().send = SendMode::kPassOn;
}

}  // namespace sdk_seam

using sdk_seam::Seam;

extern "C" int TIMLogin(const char* userId, const char* userSig, TIMCommCallback cb,
                        void* userData) {
  using Fn = int (*)(const char*, const char*, TIMCommCallback, void*);
  auto next = sdk_seam::Next<Fn>("TIMLogin");
  {
    std::lock_guard lock(Seam().mutex);
    if (Seam().holdLogin) {
      Seam().holdLogin = false;
      Seam().heldCallback = cb;
      Seam().heldUser = userData;
      // The engine signs in all the same; only the module's result waits.
      return next(
          userId, userSig, [](int32_t, const char*, const char*, void*) {}, nullptr);
    }
  }
  return next(userId, userSig, cb, userData);
}

extern "C" int TIMMsgSendNewMsg(const char* convId, int32_t convType, const char* json,
                                TIMCommCallback cb, void* userData) {
  using Fn = int (*)(const char*, int32_t, const char*, TIMCommCallback, void*);
  sdk_seam::SendMode mode;
  int32_t code;
  {
    std::lock_guard lock(Seam().mutex);
    mode = Seam().send;
    code = Seam().sendCode;
  }
  if (mode == sdk_seam::SendMode::kAnswerInside) {
    cb(code, "", "{}", userData);
    return 0;
  }
  if (mode == sdk_seam::SendMode::kDrop) return 0;
  return sdk_seam::Next<Fn>("TIMMsgSendNewMsg")(convId, convType, json, cb, userData);
}
