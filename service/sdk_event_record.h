#pragma once
// The heap record that carries an SDK event's JSON from the callback thread
// to the window thread (window message 3024). The callback allocates it; once
// posted the window owns it and frees it after the dispatcher ran.

#include <cstdint>
#include <string>

enum SdkEventKind : uint32_t {
  kSdkEventFriendAddRequest = 1,
  kSdkEventNewMessages = 3,
  kSdkEventFriendProfileList = 4,
  kSdkEventConversationList = 5,
};

struct SdkEventRecord {
  uint32_t kind = 0;
  std::string text;  // the SDK's UTF-8 JSON, byte for byte
  // kind 3: 1 and 1 from the new-message callback; the second is 0 for
  // history fetched with the message list (pushed messages act on drawing-sync
  // instructions, fetched ones do not).
  uint8_t flag1 = 0;
  uint8_t flag2 = 0;
  // Non-zero after dispatch: the window posts 3184 to itself.
  uint8_t recent_list_flag = 0;
};
