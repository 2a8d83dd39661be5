// The message view with a long history, offscreen: a rebuild of 1000
// messages of mixed kinds (refresh mode 0) until painted, one scroll step
// through them, and the memory the items cost.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <optional>

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QScrollBar>

#include "bench/ui/shown_chat_window.h"
#include "tests/ui/fake_message_source.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/window_impl_base.h"
#include "ui/main/main_controls.h"
#include "ui/main/message_view.h"

namespace {

class SkinWindow : public ui::WindowImplBase {
 protected:
  std::string GetSkinFile() const override { return "IMWnd.xml"; }
  std::string GetWindowClassName() const override { return "MessageViewBench"; }
};

ElemStru ElemOfKind(int i) {
  ElemStru e;
  switch (i % 8) {
    case 0:
      e.elem_type = kElemImage;
      break;
    case 1:
      e.elem_type = kElemFile;
      e.file_name = u"一层平面图说明.pdf";
      e.file_size = 38912;
      break;
    case 2:
      e.elem_type = kElemSound;
      e.file_time = 9;
      break;
    case 3:
      e.elem_type = kElemCustom;
      e.drawing.subType = 1;
      e.drawing.fileName = u"总图.dwg";
      e.drawing.fileSize = 254812;
      break;
    case 4:
      e.elem_type = kElemText;
      e.text = u"楼梯间的尺寸[微笑]请再核对一下[鼓掌]";
      break;
    default:
      e.elem_type = kElemText;
      e.text = u"第 " + platform::W(std::to_string(i)) +
               u" 条：一层平面图已经上传到群空间了，请大家在周五之前看完并把意见写在这里。";
      break;
  }
  return e;
}

// The chat window's skin with the message view over `count` messages.
struct ViewWith {
  explicit ViewWith(int count) {
    bench::App();
    window.Create(nullptr, u"bench");
    window.ShowWindow(true, false);
    controls.LookUp(window);
    // The view takes the list from the controls: made once they are found.
    view.emplace(window, controls, source, desktop);
    controls.chatModule.SelectItem(0);
    window.MoveWindow(ui::Rect{0, 0, 900, 700});
    std::vector<MessageStru> messages;
    for (int i = 0; i < count; ++i) {
      MessageStru m;
      m.conv_id = source.convId;
      m.unique_id = static_cast<uint64_t>(i) + 1;
      m.server_time = 1700000000 + static_cast<uint64_t>(i) * 30;
      m.is_from_self = i % 3 == 0;
      m.sender = m.is_from_self ? u"10001" : u"10002";
      m.elems.push_back(ElemOfKind(i));
      messages.push_back(std::move(m));
    }
    view->messages().Merge(source.convId, messages);
    list = static_cast<QAbstractItemView*>(ui::qt::WidgetOf(controls.hisRecordList));
  }
  ~ViewWith() { window.Close(); }
  void Rebuild() {
    view->list().RemoveAll();
    ShowAndPaint();
  }
  // The rebuild, then what the event loop runs next: the view's layout and
  // its paint.
  void ShowAndPaint() {
    view->ShowMsgs();
    list->doItemsLayout();
    list->viewport()->repaint();
  }

  SkinWindow window;
  ui::main::MainControls controls;
  ui::test::FakeMessageSource source;
  struct NoDesktop : ui::Desktop {
    bool OpenFile(const WString&) override { return false; }
    bool ShowInFolder(const WString&) override { return false; }
  } desktop;
  std::optional<ui::main::MessageView> view;
  QAbstractItemView* list = nullptr;
};

void BM_OpenConversation(benchmark::State& state) {
  ViewWith chat(static_cast<int>(state.range(0)));
  for (auto _ : state) chat.Rebuild();
  state.counters["items"] = chat.view->list().Count();
  if (chat.view->list().Count() < state.range(0)) state.SkipWithError("the view holds no items");
}
BENCHMARK(BM_OpenConversation)->Arg(1000)->Unit(benchmark::kMillisecond);

void BM_ScrollMessageView(benchmark::State& state) {
  ViewWith chat(static_cast<int>(state.range(0)));
  chat.Rebuild();
  QCoreApplication::processEvents();  // the delayed layout sets the scroll range
  QScrollBar* bar = chat.list->verticalScrollBar();
  const int step = 3 * 20;  // one wheel notch: three lines
  for (auto _ : state) {
    bar->setValue(bar->value() + step >= bar->maximum() ? 0 : bar->value() + step);
    chat.list->viewport()->repaint();
  }
  state.counters["range_px"] = bar->maximum();
  if (bar->maximum() <= step) state.SkipWithError("the view does not scroll");
}
BENCHMARK(BM_ScrollMessageView)->Arg(1000)->Unit(benchmark::kMillisecond);

// Heap in use with the items built minus with the list empty.
void BM_MessageViewMemory(benchmark::State& state) {
  ViewWith chat(static_cast<int>(state.range(0)));
  double total = 0;
  for (auto _ : state) {
    chat.view->list().RemoveAll();
    malloc_trim(0);
    size_t empty = mallinfo2().uordblks;
    chat.ShowAndPaint();
    total = static_cast<double>(mallinfo2().uordblks) - static_cast<double>(empty);
  }
  state.counters["mib_total"] = total / (1024.0 * 1024.0);
}
BENCHMARK(BM_MessageViewMemory)->Arg(1000)->Iterations(3);

}  // namespace
