// A peer sends 2,000 messages through a local Prosody. Baseline: a bare
// libstrophe client that only counts them. Measured: the SDK's XMPP
// backend receiving them and the service storing them in Chat.db.
#include <benchmark/benchmark.h>
#include <json/json.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "bench/service/bench_window.h"
#include "bench/xmpp/bare_client.h"
#include "imsdk/im_sdk.h"
#include "platform/window_messages.h"
#include "service/chat_tools.h"
#include "store/chat_db.h"
#include "tests/xmpp/prosody_server.h"

namespace {

using xmpp_test::ProsodyServer;

ProsodyServer& Server() {
  static ProsodyServer server;
  if (!server.running() && server.folder().empty()) {
    server.Start({"sender", "counter", "receiver"}, /*archive_in_memory=*/true);
  }
  return server;
}

std::string Jid(const std::string& user) {
  return user + "@" + ProsodyServer::domain();
}

BareClient& Sender() {
  static BareClient sender(Jid("sender"), ProsodyServer::PasswordOf("sender"), Server().c2s_port());
  return sender;
}

// Waits until `done` holds; false after a minute.
template <typename F>
bool WaitUntil(F done) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!done()) {
    if (std::chrono::steady_clock::now() > until) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  return true;
}

void BM_ServerTransportBaseline(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  BareClient counter(Jid("counter"), ProsodyServer::PasswordOf("counter"), Server().c2s_port());
  if (!Server().running() || !Sender().ok() || !counter.ok()) {
    state.SkipWithError("no Prosody or the clients cannot sign in");
    return;
  }
  for (auto _ : state) {
    const uint64_t target = counter.received() + static_cast<uint64_t>(count);
    Sender().SendBurst(Jid("counter"), count);
    if (!WaitUntil([&] { return counter.received() >= target; })) {
      state.SkipWithError("messages lost");
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * count);
}

// What the module's window thread does with a new-message callback, done
// here on the callback thread itself.
struct Receiver {
  CChatTools* tools = nullptr;
  std::atomic<uint64_t> stored{0};
  std::atomic<uint64_t> batches{0};
};
Receiver g_receiver;

void OnNewMessages(const char* json, void*) {
  SdkEventRecord record;
  record.kind = kSdkEventNewMessages;
  record.text = json;
  record.flag1 = record.flag2 = 1;
  g_receiver.tools->OnRecvNewMsg(&record);
  Json::Value array;
  Json::Reader().parse(json, array);
  g_receiver.stored.fetch_add(array.size());
  g_receiver.batches.fetch_add(1);
}

void OnResult(int32_t code, const char*, const char*, void* flag) {
  static_cast<std::atomic<int>*>(flag)->store(code == TIM_SUCC ? 1 : 2);
}

void BM_ServerReceiveAndStore(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  if (!Server().running() || !Sender().ok()) {
    state.SkipWithError("no Prosody or the sender cannot sign in");
    return;
  }
  const std::string folder = (std::filesystem::temp_directory_path() / "xmpp_bench").string();
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  Server().WriteSdkConfig(folder);
  CChatDb& db = CChatDb::Instance();
  db.Open(folder + "/Chat.db");
  db.CreateSchema();
  BenchWindow window;
  CChatTools tools;
  tools.AttachWindow(&window);
  tools.Login(u"receiver", u"sig");  // only the user id is kept
  g_receiver.tools = &tools;

  Json::Value config;
  config["sdk_config_config_file_path"] = folder;
  Json::StreamWriterBuilder writer;
  TIMInit(1, Json::writeString(writer, config).c_str());
  TIMAddRecvNewMsgCallback(&OnNewMessages, nullptr);
  std::atomic<int> signed_in{0};
  const std::string password = ProsodyServer::PasswordOf("receiver");
  TIMLogin("receiver", password.c_str(), &OnResult, &signed_in);
  if (!WaitUntil([&] { return signed_in.load() != 0; }) || signed_in.load() != 1) {
    state.SkipWithError("the SDK cannot sign in");
  } else {
    for (auto _ : state) {
      const uint64_t target = g_receiver.stored.load() + static_cast<uint64_t>(count);
      Sender().SendBurst(Jid("receiver"), count);
      if (!WaitUntil([&] { return g_receiver.stored.load() >= target; })) {
        state.SkipWithError("messages lost");
        break;
      }
      state.PauseTiming();
      if (tools.NewMessageCount(u"sender") < static_cast<size_t>(count)) {
        state.SkipWithError("messages missing from the store's cache");
      }
      (void)tools.TakeNewMessages(u"sender", tools.NewMessageCount(u"sender"));
      window.Drain();
      state.ResumeTiming();
    }
  }
  // How many new-message callbacks carried them: fewer means fewer commits.
  state.counters["batches"] = benchmark::Counter(static_cast<double>(g_receiver.batches.load()),
                                                 benchmark::Counter::kAvgIterations);
  TIMRemoveRecvNewMsgCallback(&OnNewMessages);
  TIMUninit();
  window.Drain();
  state.SetItemsProcessed(state.iterations() * count);
  db.Close();
  std::filesystem::remove_all(folder);
}

BENCHMARK(BM_ServerTransportBaseline)
    ->Arg(2000)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_ServerReceiveAndStore)
    ->Arg(2000)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
