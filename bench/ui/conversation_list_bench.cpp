// The conversation list with hundreds of conversations, offscreen: from
// message 3184 to the list painted, against a bare QListView of as many
// text rows. The memory the rows cost is reported as a counter.
#include <benchmark/benchmark.h>
#include <json/json.h>
#include <malloc.h>

#include <QApplication>
#include <QListView>
#include <QStringListModel>

#include "bench/ui/shown_chat_window.h"
#include "platform/window_messages.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/row_list.h"

namespace {

std::string ConversationList(int count) {
  Json::Value array(Json::arrayValue);
  for (int i = 0; i < count; ++i) {
    Json::Value conv;
    std::string id = std::to_string(20000 + i);
    conv["conv_id"] = id;
    conv["conv_type"] = 1;
    conv["conv_unread_num"] = i % 3;
    conv["conv_active_time"] = 1700000000 + i;
    conv["conv_is_has_lastmsg"] = true;
    Json::Value elem;
    elem["elem_type"] = 0;
    elem["text_elem_content"] = "第 " + std::to_string(i) + " 条消息：请核对一层平面图";
    conv["conv_last_msg"]["message_elem_array"].append(elem);
    conv["conv_last_msg"]["message_conv_id"] = id;
    conv["conv_last_msg"]["message_conv_type"] = 1;
    array.append(conv);
  }
  return Json::FastWriter().write(array);
}

size_t HeapInUse() {
  return mallinfo2().uordblks;
}

// The chat window, shown, over a service holding `count` conversations.
struct ChatWindowWith : bench::ShownChatWindow {
  explicit ChatWindowWith(int count) {
    Feed([&] { tools.DealConvListFunc(ConversationList(count)); });
  }
  void Rebuild() { window.SendMessage(platform::msg::kRecentConversationsChanged); }
};

void BM_ConversationListRebuild(benchmark::State& state) {
  ChatWindowWith chat(static_cast<int>(state.range(0)));
  auto* list =
      static_cast<QListView*>(ui::qt::WidgetOf(chat.window.FindControl("ConversationList")));
  for (auto _ : state) {
    chat.Rebuild();
    bench::LayOutAndPaint(*list);
  }
  state.counters["rows"] = chat.window.Conversations().rows().Count();
}
BENCHMARK(BM_ConversationListRebuild)->Arg(500)->Unit(benchmark::kMillisecond);

// The memory 500 rows cost: heap in use with the list rebuilt and painted
// minus empty (rows out of view hold only their user data), and with every
// row made, as after scrolling through the whole list.
void BM_ConversationListMemory(benchmark::State& state) {
  ChatWindowWith chat(static_cast<int>(state.range(0)));
  ui::RowList& rows = chat.window.Conversations().rows();
  auto* list = static_cast<QListView*>(ui::qt::WidgetOf(rows.control()));
  size_t shown = 0;
  size_t allMade = 0;
  for (auto _ : state) {
    rows.RemoveAll();
    malloc_trim(0);
    size_t empty = HeapInUse();
    chat.Rebuild();
    bench::LayOutAndPaint(*list);
    shown = HeapInUse() - empty;
    for (int row = 0; row < rows.Count(); ++row) rows.Get(row, "ConverItem_nickname", "text");
    allMade = HeapInUse() - empty;
  }
  auto perRow = [&](size_t bytes) {
    return static_cast<double>(bytes) / static_cast<double>(state.range(0));
  };
  state.counters["bytes_per_row"] = perRow(shown);
  state.counters["bytes_per_row_all_made"] = perRow(allMade);
  state.counters["kib_total_all_made"] = static_cast<double>(allMade) / 1024.0;
}
BENCHMARK(BM_ConversationListMemory)->Arg(500)->Iterations(3);

void BM_QtListViewBaseline(benchmark::State& state) {
  bench::App();
  QListView view;
  QStringListModel model;
  view.setModel(&model);
  view.setUniformItemSizes(true);  // as the row lists: one row height, no text measured per row
  view.resize(250, 624);
  view.show();
  QCoreApplication::processEvents();
  for (auto _ : state) {
    QStringList texts;
    for (int i = 0; i < state.range(0); ++i) texts << QStringLiteral("会话 %1").arg(i);
    model.setStringList(texts);
    bench::LayOutAndPaint(view);
  }
}
BENCHMARK(BM_QtListViewBaseline)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
