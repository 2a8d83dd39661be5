// The window frame: skins, life cycle, closing and timers.
#include <gtest/gtest.h>

#include <QTimer>

#include "platform/trace.h"
#include "tests/ui/test_window.h"

namespace ui::test {
namespace {

TEST(WindowImplBase, CreateLoadsTheSkinAndInitialisesBeforeWindowInit) {
  RecordingWindow w("KitTest.xml");
  bool controlsAtInit = false;
  w.onNotify = [&](TNotifyUI& msg) {
    if (msg.sType == kNotifyWindowInit) controlsAtInit = w.FindControl("Kit_Button").IsValid();
  };
  ASSERT_TRUE(w.Create(nullptr, platform::W("测试")));
  EXPECT_TRUE(w.initWindowRan);
  ASSERT_EQ(w.Count("windowinit"), 1u);
  EXPECT_EQ(w.notes.front().type, "windowinit");
  EXPECT_TRUE(controlsAtInit);
  EXPECT_TRUE(platform::IsWindow(w.GetHWND()));
  EXPECT_EQ(w.FindControl("Kit_Label").GetText(), platform::W("标签"));
  EXPECT_EQ(w.FindControl("KitTest").GetName(), "KitTest");  // the skin's root is a control
  EXPECT_FALSE(w.FindControl("NoSuchControl"));
  EXPECT_FALSE(w.Create(nullptr, platform::W("again")));  // one window per object
}

TEST(WindowImplBase, MissingOrBrokenSkinLeavesAWindowlessObject) {
  for (const char* skin : {"NoSuchSkin.xml", "Broken.xml"}) {
    platform::ScopedTraceCapture trace;
    RecordingWindow w(skin);
    EXPECT_FALSE(w.Create(nullptr, platform::W("x"))) << skin;
    EXPECT_TRUE(trace.Contains("LoadSkin")) << skin;
    EXPECT_FALSE(w.IsCreated());
    EXPECT_FALSE(w.initWindowRan);
    EXPECT_FALSE(w.FindControl("Kit_Button"));
    EXPECT_EQ(w.ShowModal(), -1);
    w.Close(1);  // harmless
  }
}

TEST(WindowImplBase, CloseDestroysWithTheCodeAndEndsTheModalLoop) {
  RecordingWindow w("KitTest.xml");
  ASSERT_TRUE(w.Create(nullptr, platform::W("x")));
  platform::WindowHandle handle = w.GetHWND();
  Control button = w.FindControl("Kit_Button");
  QTimer::singleShot(0, [&] { w.Close(7); });
  EXPECT_EQ(w.ShowModal(), 7);
  EXPECT_EQ(w.finalMessages, 1);
  EXPECT_FALSE(w.IsCreated());
  EXPECT_FALSE(platform::IsWindow(handle));
  EXPECT_FALSE(platform::PostMessage(handle, 3184, 0, 0));
  EXPECT_FALSE(button);  // handles do not dangle
  button.SetText(platform::W("ignored"));
  EXPECT_FALSE(w.FindControl("Kit_Button"));
}

TEST(WindowImplBase, TimersAreOneShotAndRestartable) {
  RecordingWindow w("KitTest.xml");
  ASSERT_TRUE(w.Create(nullptr, platform::W("x")));
  auto timerCount = [&](unsigned id) {
    size_t n = 0;
    for (const auto& m : w.messages) n += m.msg == kWmTimer && m.wParam == id;
    return n;
  };
  w.SetTimer(9996, 20);
  w.SetTimer(9996, 30);  // restarts: still one firing
  w.SetTimer(9997, 10);
  w.SetTimer(9998, 10);
  w.KillTimer(9998);
  EXPECT_TRUE(w.IsTimerPending(9996));
  EXPECT_FALSE(w.IsTimerPending(9998));
  ASSERT_TRUE(PumpUntil([&] { return timerCount(9996) == 1 && timerCount(9997) == 1; }));
  Pump(80);  // a wrongly repeating timer would fire again here
  EXPECT_EQ(timerCount(9996), 1u);
  EXPECT_EQ(timerCount(9997), 1u);
  EXPECT_EQ(timerCount(9998), 0u);
  EXPECT_FALSE(w.IsTimerPending(9996));
}

}  // namespace
}  // namespace ui::test
