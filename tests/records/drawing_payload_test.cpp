#include "records/drawing_payload.h"

#include <gtest/gtest.h>

#include "platform/trace.h"
#include "records/json_reader.h"
#include "records/message_parser.h"

namespace {

// Records what reaches the host side, in order, and traces a marker so that
// the order against the parser's own trace lines can be checked.
class RecordingHandler : public DrawingPayloadHandler {
 public:
  void OnDrawingSync(const WString& conv_id, const DrawingMsgStru& drawing,
                     const Json::Value& payload) override {
    calls.push_back("sync " + platform::Utf16ToUtf8(conv_id) + " " +
                    payload["data"]["instruct"].asString());
    EXPECT_EQ(drawing.msgType, kDrawingMsgSyncInstruct);
    platform::Trace("handler sync");
  }
  void OnChatDrawingUpdate(const WString& conv_id, const DrawingMsgStru& drawing,
                           const Json::Value&) override {
    calls.push_back("update " + platform::Utf16ToUtf8(conv_id) + " " +
                    std::to_string(drawing.subType));
  }
  std::vector<std::string> calls;
};

std::string CustomElem(const std::string& payload) {
  Json::Value elem;
  elem["elem_type"] = kElemCustom;
  elem["custom_elem_data"] = payload;
  return Json::FastWriter().write(elem);
}

std::string MessageArray(const std::string& conv_id, const std::vector<std::string>& payloads) {
  std::string elems;
  for (const std::string& p : payloads) elems += (elems.empty() ? "" : ",") + CustomElem(p);
  return R"([{"message_conv_id":")" + conv_id + R"(","message_elem_array":[)" + elems + "]}]";
}

struct HandlerCase {
  const char* name;
  std::string payload;
  bool act_on_sync;
  std::vector<std::string> expected_calls;
};

TEST(DrawingPayload, ReachesTheHandlerOnlyWhenItShould) {
  const std::string sync0 = R"({"msgType":3,"data":{"subType":0,"instruct":"open"}})";
  const HandlerCase cases[] = {
      {"sync instruction with act-on-sync", sync0, true, {"sync g1 open"}},
      {"sync instruction with act-on-sync clear", sync0, false, {}},
      {"sync instruction of another subType", R"({"msgType":3,"data":{"subType":1}})", true, {}},
      {"shared-chat change 2", R"({"msgType":2,"data":{"subType":2}})", false, {"update g1 2"}},
      {"shared-chat change 5", R"({"msgType":2,"data":{"subType":5}})", true, {"update g1 5"}},
      {"shared-chat subType 1", R"({"msgType":2,"data":{"subType":1}})", true, {}},
      {"shared-chat subType 6", R"({"msgType":2,"data":{"subType":6}})", true, {}},
      {"drawing file", R"({"msgType":1,"data":{"subType":0}})", true, {}},
      {"not JSON", "{msgType:3", true, {}},
      {"faulty subType", R"({"msgType":3,"data":{"subType":"0"}})", true, {}},
  };
  for (const HandlerCase& c : cases) {
    SCOPED_TRACE(c.name);
    RecordingHandler handler;
    std::vector<MessageStru> list;
    ASSERT_TRUE(records::ParseMessageArray(MessageArray("g1", {c.payload}), list,
                                           ReceiveOptions{c.act_on_sync, &handler}));
    EXPECT_EQ(handler.calls, c.expected_calls);
  }
}

TEST(DrawingPayload, HandlerRunsBetweenTheElementsInOrder) {
  const std::string sync = R"({"msgType":3,"data":{"subType":0,"instruct":"a"}})";
  const std::string other = R"({"msgType":0,"marker":"second"})";
  RecordingHandler handler;
  platform::ScopedTraceCapture trace;
  std::vector<MessageStru> list;
  ASSERT_TRUE(
      records::ParseMessageArray(MessageArray("g1", {sync, other}), list, {true, &handler}));
  const std::vector<std::string> lines = trace.Lines();
  std::vector<std::string> order;
  for (const std::string& line : lines) {
    if (line.rfind("ParseCustomElemJson:", 0) == 0 || line == "handler sync") order.push_back(line);
  }
  EXPECT_EQ(order, (std::vector<std::string>{"ParseCustomElemJson:" + sync, "handler sync",
                                             "ParseCustomElemJson:" + other}));
  ASSERT_EQ(list.size(), 1u);
  EXPECT_TRUE(list[0].elems.empty());
  EXPECT_EQ(list[0].dropped_custom_count, 2u);
}

TEST(DrawingPayload, FaultKeepsWhatWasRead) {
  platform::ScopedTraceCapture trace;
  Json::Value payload;
  ASSERT_TRUE(records::ParseJsonText(
      R"({"msgType":1,"data":{"fileId":3,"fileName":"x.dwg","fileSize":[],"fileType":"dwg"}})",
      payload));
  DrawingMsgStru drawing;
  EXPECT_FALSE(records::ParseDrawingMsg(payload, drawing));
  const DrawingMsgStru expected{.msgType = 1, .fileId = 3, .fileName = u"x.dwg"};
  EXPECT_TRUE(drawing == expected);
  EXPECT_TRUE(trace.Contains(">>>>>>>>>>>>>>>>>>>>>>>>>DrawingMsgStru"));
}

}  // namespace
