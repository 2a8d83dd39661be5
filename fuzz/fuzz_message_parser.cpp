// Feeds arbitrary bytes to the message-array parser, with a drawing handler
// attached so that the act-on-sync path runs too, and touches every parsed
// field so that a bad record shows up under the sanitizers.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "records/message_parser.h"
#include "records/message_summary.h"

namespace {

class CountingHandler : public DrawingPayloadHandler {
 public:
  void OnDrawingSync(const WString& conv_id, const DrawingMsgStru&, const Json::Value&) override {
    calls += conv_id.size() + 1;
  }
  void OnChatDrawingUpdate(const WString& conv_id, const DrawingMsgStru& drawing,
                           const Json::Value&) override {
    calls += conv_id.size() + drawing.content.size() + 1;
  }
  size_t calls = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CountingHandler handler;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::vector<MessageStru> messages;
  records::ParseMessageArray(text, messages, ReceiveOptions{(size & 1) != 0, &handler});
  size_t total = handler.calls;
  for (const MessageStru& msg : messages) {
    for (const ElemStru& elem : msg.elems) {
      total += MessageSummaryText(elem).size() + elem.download_param.size();
      total += records::GroupChangeReminderFor(elem, msg.sender).has_value();
    }
  }
  volatile size_t sink = total;
  (void)sink;
  return 0;
}
