#include "service/sending_notice.h"

namespace service {

WString SendFailureNotice(int32_t code, const WString& peerName) {
  switch (code) {
    case 0:
      return {};
    case 20010:
      return u"\"" + peerName +
             u"\"开启了朋友验证，你还不是他（她）的朋友。请先发送朋友验证请求，对方通过验证后，才能"
             u"聊天。";
    case 9519:
      return u"消息发送失败，请检查网络连接是否正常。";
    case 20011:
      return u"他（她）已经不是你的朋友。请先发送朋友验证请求，对方通过验证后，才能聊天。";
    default:
      return u"发送消息失败。";
  }
}

}  // namespace service
