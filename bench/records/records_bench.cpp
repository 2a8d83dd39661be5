// Parsing the receive callback's message array into MessageStru records.

#include <benchmark/benchmark.h>

#include <string>

#include "records/message_parser.h"

namespace {

// One text message with the keys the SDK sends (most of them not read), about
// 470 bytes like the SDK's own.
std::string TextMessage(int i) {
  const std::string n = std::to_string(i);
  return R"({"message_client_time":1700000000,"message_conv_id":"user_)" + n +
         R"(","message_conv_type":1,"message_custom_int":0,"message_custom_str":"",)"
         R"("message_elem_array":[{"elem_type":0,"text_elem_content":"图纸第)" +
         n +
         R"(版已更新，请查看 [微笑]"}],"message_is_from_self":false,)"
         R"("message_is_online_msg":true,"message_is_peer_read":false,"message_is_read":false,)"
         R"("message_platform":2,"message_priority":1,"message_rand":)" +
         std::to_string(3000000000u + i) + R"(,"message_sender":"user_)" + n +
         R"(","message_sender_profile":{"user_profile_face_url":"https://faces.example/)" + n +
         R"(.png","user_profile_identifier":"user_)" + n +
         R"(","user_profile_nick_name":"李雷"},"message_seq":)" + n + R"(,"message_server_time":)" +
         std::to_string(1700000000 + i) + R"(,"message_status":2,"message_unique_id":)" +
         std::to_string(6900000000000000000ull + i) + "}";
}

std::string MessageArray(int count) {
  std::string text = "[";
  for (int i = 0; i < count; ++i) {
    if (i) text += ',';
    text += TextMessage(i);
  }
  return text + "]";
}

void BM_ParseMessages(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  const std::string text = MessageArray(count);
  for (auto _ : state) {
    std::vector<MessageStru> messages;
    if (!records::ParseMessageArray(text, messages) || messages.size() != size_t(count)) {
      state.SkipWithError("parse failed");
      break;
    }
    benchmark::DoNotOptimize(messages.data());
  }
  state.SetItemsProcessed(state.iterations() * count);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_ParseMessages)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
