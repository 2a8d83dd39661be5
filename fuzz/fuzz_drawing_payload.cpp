// The drawing payload inside a custom element, with a handler attached so
// that the instructions it carries are acted on as when received.
#include "fuzz/fuzz_input.h"
#include "records/drawing_payload.h"

namespace {

class CountingHandler : public DrawingPayloadHandler {
 public:
  void OnDrawingSync(const WString&, const DrawingMsgStru& drawing, const Json::Value&) override {
    calls += drawing.fileName.size() + 1;
  }
  void OnChatDrawingUpdate(const WString&, const DrawingMsgStru& drawing,
                           const Json::Value&) override {
    calls += drawing.content.size() + 1;
  }
  size_t calls = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CountingHandler handler;
  DrawingMsgStru drawing;
  records::ReceiveDrawingMsg(fuzz::AsText(data, size), u"conv", ReceiveOptions{true, &handler},
                             drawing);
  fuzz::Keep(handler.calls + drawing.fileName.size());
  return 0;
}
