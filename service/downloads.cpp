// Downloading the file behind an element, and telling the window when done.
#include <json/json.h>

#include <chrono>

#include "imsdk/im_sdk.h"
#include "platform/json_text.h"
#include "platform/module_workers.h"
#include "platform/trace.h"
#include "service/callback_owner.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "service/sdk_text.h"

namespace {

constexpr auto kPictureSettleDelay = std::chrono::milliseconds(50);

// The key rides in the SDK's user data, and in 3164's wParam.
static_assert(sizeof(uintptr_t) >= sizeof(uint64_t), "request keys are 64-bit");

void* KeyToUserData(uint64_t key) {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(key));
}
uint64_t UserDataToKey(void* user) {
  return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(user));
}

}  // namespace

void CChatTools::DownloadMessageElem(const WString& elemParam, const WString& path,
                                     uint64_t requestKey) {
  service::EnterExitTrace trace("DownloadMessageElem");
  std::string param = platform::Utf16ToUtf8(elemParam);
  std::string target = platform::Utf16ToUtf8(path);
  DownloadState state;
  Json::Value json;
  if (platform::ParseJsonText(param, json) && json.isObject() &&
      json["msg_download_elem_param_type"].isIntegral()) {
    state.elem_type = json["msg_download_elem_param_type"].asInt();
  }
  state.path = path;
  downloads_.Start(requestKey, std::move(state));
  service::IdCallbackOwner().store(this);
  int ret = TIMMsgDownloadElemToPath(param.c_str(), target.c_str(),
                                     &CChatTools::TIMMsgDownloadFileElemToPathFunc,
                                     KeyToUserData(requestKey));
  if (ret != 0) platform::Trace("File download failed! ret:%d", ret);
}

std::optional<DownloadState> CChatTools::GetDownloadState(uint64_t requestKey) const {
  return downloads_.Find(requestKey);
}

void CChatTools::TIMMsgDownloadFileElemToPathFunc(int32_t code, const char* desc, const char* json,
                                                  void* user) {
  uint64_t key = UserDataToKey(user);
  CChatTools* self = service::IdCallbackOwner().load();
  if (self == nullptr) return;
  if (code != 0) {
    platform::Trace("File download failed! code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), service::OrEmpty(desc), service::OrEmpty(json));
    return;
  }
  std::optional<bool> delayed = self->downloads_.Complete(key, service::OrEmpty(json));
  if (!delayed) return;
  platform::WindowHandle window = self->ChatWindow();
  namespace msg = platform::msg;
  if (!*delayed) {
    service::Post<msg::kTransferStateChanged>(window, key);
    return;
  }
  // Give the file on disk a moment to be complete before the view loads it.
  // The worker holds only the handle and the key, never the service object;
  // when the module stops meanwhile, the window is going and gets nothing.
  platform::ModuleWorkers::Instance().Start([window, key](std::stop_token stop) {
    if (platform::SleepUnlessStopped(stop, kPictureSettleDelay)) {
      service::Post<msg::kTransferStateChanged>(window, key);
    }
  });
}
