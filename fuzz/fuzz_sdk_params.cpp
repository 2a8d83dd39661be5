// The SDK's C API with fuzzed JSON parameters, signed in to a small world:
// the first byte picks the function, the rest is its JSON text.
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "fuzz/fuzz_input.h"
#include "imsdk/engine_control.h"
#include "imsdk/im_sdk.h"

namespace {

std::atomic<int> g_login{-1};

void Ignore(int32_t, const char*, const char*, void*) {}
void OnLogin(int32_t code, const char*, const char*, void*) { g_login = code; }

// A fresh world with the signed-in account "a", a friend "b" and a group;
// renewed now and then so that stored messages do not pile up.
void SignIn() {
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  TIMUninit();
  engine.Reset();
  engine.CreateAccount("a");
  engine.CreateAccount("b");
  engine.MakeFriends("a", "b");
  engine.CreateGroup("a", "g", {"b"}, "g1");
  TIMInit(1400000001, "{}");
  g_login = -1;
  TIMLogin("a", "sig", OnLogin, nullptr);
  for (int i = 0; i < 500 && g_login < 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static size_t runs = 0;
  if (runs++ % 5000 == 0) SignIn();
  if (size == 0) return 0;
  const std::string json(reinterpret_cast<const char*>(data) + 1, size - 1);
  const char* p = json.c_str();
  switch (data[0] % 16) {
    case 0: TIMSetConfig(p, Ignore, nullptr); break;
    case 1: TIMMsgSendNewMsg("b", 1, p, Ignore, nullptr); break;
    case 2: TIMMsgSendNewMsg("g1", 2, p, Ignore, nullptr); break;
    case 3: TIMMsgGetMsgList("b", 1, p, Ignore, nullptr); break;
    case 4: TIMMsgReportReaded("b", 1, p, Ignore, nullptr); break;
    case 5: TIMMsgDownloadElemToPath(p, "/tmp/fuzz-sdk-download", Ignore, nullptr); break;
    case 6: TIMFriendshipAddFriend(p, Ignore, nullptr); break;
    case 7: TIMFriendshipDeleteFriend(p, Ignore, nullptr); break;
    case 8: TIMFriendshipModifyFriendProfile(p, Ignore, nullptr); break;
    case 9: TIMFriendshipGetPendencyList(p, Ignore, nullptr); break;
    case 10: TIMFriendshipHandleFriendAddRequest(p, Ignore, nullptr); break;
    case 11: TIMProfileGetUserProfileList(p, Ignore, nullptr); break;
    case 12: TIMProfileModifySelfUserProfile(p, Ignore, nullptr); break;
    case 13: TIMGroupGetGroupInfoList(p, Ignore, nullptr); break;
    case 14: TIMGroupCreate(p, Ignore, nullptr); break;
    default: TIMGroupModifyGroupInfo(p, Ignore, nullptr); break;
  }
  return 0;
}
