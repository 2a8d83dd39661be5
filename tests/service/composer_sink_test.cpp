// The composer's sink: what it hands the SDK for the open conversation.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "service/current_conversation.h"
#include "service/panes/composer_sink.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

class ComposerSinkTest : public ServiceTest {
 protected:
  void TearDown() override {
    service::ForgetCurrentConversation();
    ServiceTest::TearDown();
  }
};

TEST_F(ComposerSinkTest, SendsEachKindIntoTheOpenConversationAndNothingWithoutOne) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  std::unique_ptr<service::ComposerSink> owned = service::MakeComposerSink(*tools);
  service::ComposerSink& sink = *owned;
  EXPECT_FALSE(sink.SendText(u"nowhere"));  // no conversation open yet
  EXPECT_TRUE(log.CallsOf("TIMMsgSendNewMsg").empty());

  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("im-sink-" + std::to_string(::getpid()) + ".txt");
  std::ofstream(file) << std::string(1234, 'x');
  service::SetCurrentConversation(u"10002", 1);
  EXPECT_TRUE(sink.SendText(platform::W("你好[微笑]")));
  EXPECT_TRUE(sink.SendImage(u"/pictures/a.png"));
  EXPECT_TRUE(sink.SendFile(platform::W(file.string())));
  EXPECT_FALSE(sink.SendFile(u"/no/such/file.txt"));
  std::filesystem::remove(file);

  std::vector<Json::Value> calls = log.CallsOf("TIMMsgSendNewMsg");
  ASSERT_EQ(calls.size(), 3u);
  auto elem = [&](size_t i) {
    return SdkCallLog::Param(calls[i], "json_msg_param")["message_elem_array"][0];
  };
  EXPECT_EQ(SdkCallLog::Param(calls[0], "json_msg_param")["message_conv_id"].asString(), "10002");
  EXPECT_EQ(elem(0)["text_elem_content"].asString(), "你好[微笑]");
  EXPECT_EQ(elem(1)["image_elem_orig_path"].asString(), "/pictures/a.png");
  EXPECT_EQ(elem(2)["file_elem_file_name"].asString(), file.filename().string());
  EXPECT_EQ(elem(2)["file_elem_file_size"].asInt64(), 1234);
  // The three results free the ids the SDK was handed (3164 also carries
  // upload progress: a send is done when it no longer is sending).
  EXPECT_TRUE(PumpUntil([&] {
    std::set<platform::WPARAM> ids;
    for (const Seen& seen : SeenOf(platform::msg::kTransferStateChanged)) ids.insert(seen.wParam);
    return ids.size() >= calls.size() && std::all_of(ids.begin(), ids.end(), [&](auto id) {
             std::optional<MessageStru> send = tools->FindPendingSend(static_cast<uint32_t>(id));
             return send && send->status != kSending;
           });
  }));
  // Pasted pictures wait beside the user's other caches.
  EXPECT_EQ(std::filesystem::path(platform::Utf16ToUtf8(sink.PastedPictureFolder())).filename(),
            "send");
}

}  // namespace
}  // namespace service_test
