// The friend list with a thousand friends, offscreen: from message 3183 to
// the list painted. BM_QtListViewBaseline/1000 (conversation_list_bench.cpp)
// is the bare QListView to compare with.
#include <benchmark/benchmark.h>
#include <json/json.h>

#include <QListView>

#include "bench/ui/shown_chat_window.h"
#include "platform/window_messages.h"
#include "ui/kit/qt/control_ref.h"

namespace {

std::string FriendList(int count) {
  Json::Value array(Json::arrayValue);
  for (int i = 0; i < count; ++i) {
    Json::Value f;
    std::string id = std::to_string(30000 + i);
    f["friend_profile_identifier"] = id;
    if (i % 4 == 0) f["friend_profile_remark"] = "备注 " + std::to_string(i);
    f["friend_profile_user_profile"]["user_profile_identifier"] = id;
    f["friend_profile_user_profile"]["user_profile_nick_name"] = "工程师 " + std::to_string(i);
    array.append(f);
  }
  return Json::FastWriter().write(array);
}

void BM_FriendListRebuild(benchmark::State& state) {
  bench::ShownChatWindow chat;
  chat.Feed([&] { chat.tools.UpdateFriendList(FriendList(static_cast<int>(state.range(0)))); });
  chat.window.FindControl("FriendsListBtn").Selected(true, false);
  chat.window.Controls().tabs.SelectItem(ui::main::kFriendsPage);
  auto* list = static_cast<QListView*>(ui::qt::WidgetOf(chat.window.FindControl("FriendsList")));
  for (auto _ : state) {
    chat.window.SendMessage(platform::msg::kFriendListChanged);
    bench::LayOutAndPaint(*list);
  }
  state.counters["rows"] = list->model()->rowCount();
}
BENCHMARK(BM_FriendListRebuild)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
