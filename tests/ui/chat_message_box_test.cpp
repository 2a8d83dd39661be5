// The message box, driven through its modal loop the way a user would.
#include "ui/dialogs/chat_message_box.h"

#include <gtest/gtest.h>

#include <functional>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include "tests/ui/test_window.h"

namespace {

using platform::W;

struct Seen {
  bool shown = false;
  bool cancelVisible = false;
  bool confirmVisible = false;
  QString title;
  QString message;
  QString windowTitle;
  QPoint centre;
  bool watchdogFired = false;
};

// Acts on the box once its modal loop runs; a watchdog ends a box left open.
Seen WithBox(const std::function<void(QWidget*)>& act, const std::function<void()>& show) {
  Seen seen;
  std::function<void()> poll = [&] {
    QWidget* box = QApplication::activeModalWidget();
    if (!box) return QTimer::singleShot(1, poll);
    seen.shown = true;
    seen.windowTitle = box->windowTitle();
    seen.centre = box->frameGeometry().center();
    auto* cancel = box->findChild<QWidget*>("ChatMessagebox_CancelBtn");
    auto* confirm = box->findChild<QWidget*>("ChatMessagebox_ConfirmBtn");
    seen.cancelVisible = cancel && cancel->isVisible();
    seen.confirmVisible = confirm && confirm->isVisible();
    if (auto* t = box->findChild<QLabel*>("ChatMessagebox_Title")) seen.title = t->text();
    if (auto* m = box->findChild<QLabel*>("ChatMessagebox_Msg")) seen.message = m->text();
    act(box);
  };
  QTimer::singleShot(0, poll);
  QObject guard;  // ends the watchdog with this call
  QTimer::singleShot(5000, &guard, [&] {
    seen.watchdogFired = true;
    if (QWidget* box = QApplication::activeModalWidget()) box->hide();
  });
  show();
  return seen;
}

std::function<void(QWidget*)> Click(const char* name) {
  return [name](QWidget* box) {
    auto* button = box->findChild<QAbstractButton*>(name);
    ASSERT_NE(button, nullptr) << name;
    QTest::mouseClick(button, Qt::LeftButton);
  };
}

TEST(CChatMessageBox, QuestionHasCancelNoticeOnlyConfirmBothCentredWithTheirTexts) {
  ui::test::RecordingWindow owner("KitTest.xml");
  ASSERT_TRUE(owner.Create(nullptr, W("owner"), ui::WindowStyle::kTopLevel));
  owner.MoveWindow(ui::Rect{200, 100, 1000, 700});
  owner.ShowWindow(true);
  const char* text = "将联系人 张三 删除，将同时删除与该联系人的聊天记录及图纸文件。";
  for (int mode : {1, 0}) {
    Seen seen = WithBox(Click("ChatMessagebox_ConfirmBtn"),
                        [&] { CChatMessageBox box(W("删除好友"), W(text), &owner, mode); });
    ASSERT_TRUE(seen.shown);
    EXPECT_FALSE(seen.watchdogFired);
    EXPECT_EQ(seen.title, QString::fromUtf8("删除好友"));
    EXPECT_EQ(seen.message, QString::fromUtf8(text));
    EXPECT_EQ(seen.windowTitle, QStringLiteral("CChatMessageBox"));
    EXPECT_TRUE(seen.confirmVisible);
    EXPECT_EQ(seen.cancelVisible, mode == 1);
    EXPECT_TRUE(CChatMessageBox::Confirmed());
    ui::Rect o = owner.GetWindowRect();
    EXPECT_NEAR(seen.centre.x(), (o.left + o.right) / 2, 1);
    EXPECT_NEAR(seen.centre.y(), (o.top + o.bottom) / 2, 1);
  }
  QCoreApplication::processEvents();  // the answer is the flag, never a message
  for (const auto& m : owner.messages) EXPECT_NE(m.msg, platform::msg::kMessageBoxAnswered);
}

TEST(CChatMessageBox, OnlyTheConfirmButtonConfirms) {
  const std::pair<const char*, std::function<void(QWidget*)>> answers[] = {
      {"cancel", Click("ChatMessagebox_CancelBtn")},
      {"close button", Click("ChatMessagebox_closebtn")},
      {"escape", [](QWidget* box) { QTest::keyClick(box, Qt::Key_Escape); }},
  };
  for (const auto& [how, act] : answers) {
    // A confirmed box first, so that a box which forgets to reset the flag fails.
    WithBox(Click("ChatMessagebox_ConfirmBtn"),
            [] { CChatMessageBox box(W("a"), W("b"), nullptr, 1); });
    ASSERT_TRUE(CChatMessageBox::Confirmed());
    Seen seen =
        WithBox(act, [] { CChatMessageBox box(W("您确定要退出群聊吗？"), W("?"), nullptr, 1); });
    EXPECT_FALSE(seen.watchdogFired) << how;
    EXPECT_FALSE(CChatMessageBox::Confirmed()) << how;
  }
}

}  // namespace
