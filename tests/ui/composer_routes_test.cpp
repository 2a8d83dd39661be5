// The chat window's routes into its composer: Ctrl+V, the emoticon button and
// the picker's 3153, and 3205.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>

#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "tests/ui/test_window.h"
#include "ui/dialogs/face_select_dialog.h"
#include "ui/main/im_wnd.h"

namespace {

class ComposerRoutesTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(window_.CreateChatWindow());
    window_.FindControl("IMWnd_ChatModule").SelectItem(0);  // the chat page
    window_.ShowChat();
    composer_ = window_.FindControl("ChatWindow_SendrichEdit");
  }
  void TearDown() override {
    window_.DestroyChatWindow();
    service::ForgetCurrentConversation();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  WString Content() {
    WString text;
    for (const auto& piece : ui::RichEdit(composer_).GetContent()) text += piece.value;
    return text;
  }

  CChatTools tools_;
  CIMWnd window_{tools_};
  ui::Control composer_;
};

TEST_F(ComposerRoutesTest, CtrlVInTheComposerIsSwallowedAfterPastingAndElsewhereGoesOn) {
  QApplication::clipboard()->setText(QStringLiteral("粘贴"));
  composer_.SetFocus();
  ASSERT_TRUE(ui::test::PumpUntil([&] { return composer_.IsFocused(); }));
  EXPECT_EQ(window_.SendMessage(ui::kWmKeyDown, 'V', ui::kKeyCtrl), 1);
  EXPECT_EQ(Content(), platform::W("粘贴"));
  EXPECT_EQ(window_.SendMessage(ui::kWmKeyDown, 'C', ui::kKeyCtrl), 0);

  ui::Control search = window_.FindControl("IMWnd_searchEdit");
  search.SetFocus();
  ASSERT_TRUE(ui::test::PumpUntil([&] { return search.IsFocused(); }));
  EXPECT_EQ(window_.SendMessage(ui::kWmKeyDown, 'V', ui::kKeyCtrl), 0);
  EXPECT_EQ(Content(), platform::W("粘贴"));

  platform::PostMessage(window_.GetHWND(), platform::msg::kClearComposer, 0, 0);
  EXPECT_TRUE(ui::test::PumpUntil([&] { return Content().empty(); }));
}

TEST_F(ComposerRoutesTest, TheEmoticonButtonOpensThePickerWhoseChoiceLandsInTheComposer) {
  window_.SendNotify(window_.FindControl("IMWnd_EmoticonsBtn"), ui::kNotifyClick);
  CFaceSelectDialog* picker = window_.ComposerPane().Picker();
  ASSERT_NE(picker, nullptr);
  ASSERT_TRUE(picker->IsWindowVisible());
  picker->SendNotify(picker->FindControl("Smile"), ui::kNotifyClick);
  ASSERT_TRUE(ui::test::PumpUntil([&] { return !Content().empty(); }));
  EXPECT_EQ(Content(), u"[Smile]");
  EXPECT_FALSE(picker->HasChoice());
  EXPECT_FALSE(picker->IsCreated());
}

}  // namespace
