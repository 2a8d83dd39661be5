// 10,000 pushed messages through OnRecvNewMsg into the caches and a real
// Chat.db, in texts of the most messages one event may carry (one
// transaction each).
#include <benchmark/benchmark.h>
#include <json/json.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "bench/service/bench_window.h"
#include "platform/window_messages.h"
#include "records/entry_limits.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "store/chat_db.h"

namespace {

std::string MessageArray(int count, uint64_t firstId) {
  Json::Value array(Json::arrayValue);
  for (int i = 0; i < count; ++i) {
    Json::Value m;
    m["message_conv_id"] = "10002";
    m["message_conv_type"] = 1;
    m["message_sender"] = "10002";
    m["message_client_time"] = 1700000000 + i;
    m["message_server_time"] = 1700000000 + i;
    m["message_is_from_self"] = false;
    m["message_platform"] = 0;
    m["message_is_read"] = false;
    m["message_status"] = 2;
    m["message_unique_id"] = Json::UInt64(firstId + i);
    m["message_sender_profile"]["user_profile_identifier"] = "10002";
    m["message_sender_profile"]["user_profile_nick_name"] = "设计师";
    Json::Value text;
    text["elem_type"] = 0;
    text["text_elem_content"] = "图纸第 " + std::to_string(i) + " 版已更新，请查看[微笑]";
    m["message_elem_array"].append(text);
    array.append(m);
  }
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, array);
}

void BM_ReceiveAndStore(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  std::string folder = (std::filesystem::temp_directory_path() / "service_bench").string();
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  CChatDb& db = CChatDb::Instance();
  db.Open(folder + "/Chat.db");
  db.CreateSchema();

  BenchWindow window;
  CChatTools tools;
  tools.AttachWindow(&window);
  tools.Login(u"10001", u"sig");  // the SDK is not started: only the user id is kept

  uint64_t nextId = 1;
  for (auto _ : state) {
    state.PauseTiming();
    // In texts of the most messages one event may carry.
    std::vector<SdkEventRecord> records;
    for (int sent = 0; sent < count; sent += static_cast<int>(records::kMaxMessagesPerText)) {
      const int batch = std::min(count - sent, static_cast<int>(records::kMaxMessagesPerText));
      SdkEventRecord& record = records.emplace_back();
      record.kind = kSdkEventNewMessages;
      record.text = MessageArray(batch, nextId);
      record.flag1 = record.flag2 = 1;
      nextId += batch;
    }
    state.ResumeTiming();

    for (const SdkEventRecord& record : records) tools.OnRecvNewMsg(&record);

    state.PauseTiming();
    if (tools.NewMessageCount(u"10002") != static_cast<size_t>(count)) {
      state.SkipWithError("messages missing from the new-message cache");
    }
    (void)tools.TakeNewMessages(u"10002", count);
    window.Drain();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * count);
  db.Close();
  std::filesystem::remove_all(folder);
}
BENCHMARK(BM_ReceiveAndStore)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
