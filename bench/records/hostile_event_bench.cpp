// What one hostile SDK event costs once capped: time, and the peak of heap
// memory while it is parsed (counter "peak_MB"), measured by counting every
// allocation of this binary.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

#include "records/message_parser.h"

namespace {

std::atomic<size_t> g_live{0};
std::atomic<size_t> g_peak{0};

void Count(void* p) {
  const size_t live = g_live += malloc_usable_size(p);
  size_t peak = g_peak.load();
  while (live > peak && !g_peak.compare_exchange_weak(peak, live)) {
  }
}

}  // namespace

void* operator new(size_t size) {
  void* p = std::malloc(size ? size : 1);
  if (p == nullptr) throw std::bad_alloc();
  Count(p);
  return p;
}
void operator delete(void* p) noexcept {
  if (p == nullptr) return;
  g_live -= malloc_usable_size(p);
  std::free(p);
}
void operator delete(void* p, size_t) noexcept {
  operator delete(p);
}

namespace {

std::string Repeated(const std::string& entry, size_t count) {
  std::string text;
  text.reserve((entry.size() + 1) * count);
  for (size_t i = 0; i < count; ++i) text += (i ? "," : "") + entry;
  return text;
}

const std::string kImage =
    R"({"elem_type":1,"image_elem_orig_id":"o","image_elem_thumb_id":"t","image_elem_large_id":"l",)"
    R"("image_elem_orig_url":"https://o","image_elem_thumb_url":"https://t",)"
    R"("image_elem_large_url":"https://l","image_elem_orig_path":"p","image_elem_task_id":1})";

// 0: one message of 200 000 empty elements (600 KB), which took 324 MB;
// 1: one message of 200 000 image elements, which took 479 MB;
// 2: 480 messages of 32 image elements each (3.6 MB), near the most that passes.
std::string Event(int64_t which) {
  switch (which) {
    case 0:
      return R"([{"message_elem_array":[)" + Repeated("{}", 200000) + "]}]";
    case 1:
      return R"([{"message_elem_array":[)" + Repeated(kImage, 200000) + "]}]";
    default:
      return "[" + Repeated(R"({"message_elem_array":[)" + Repeated(kImage, 32) + "]}", 480) + "]";
  }
}

void BM_HostileEvent(benchmark::State& state) {
  const std::string text = Event(state.range(0));
  size_t peak = 0;
  for (auto _ : state) {
    const size_t before = g_live.load();
    g_peak = before;
    std::vector<MessageStru> messages;
    records::ParseMessageArray(text, messages);
    benchmark::DoNotOptimize(messages.data());
    peak = std::max(peak, g_peak.load() - before);
  }
  state.counters["text_MB"] = static_cast<double>(text.size()) / (1 << 20);
  state.counters["peak_MB"] = static_cast<double>(peak) / (1 << 20);
}
BENCHMARK(BM_HostileEvent)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
