// The composer pane on the real chat window skin, with a recording sink and
// scripted prompts: what is sent, what is refused, paste, drop, the picker.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QTest>
#include <QTextEdit>
#include <QUrl>

#include <functional>

#include "service/panes/composer_sink.h"
#include "tests/ui/rules/scratch_folder.h"
#include "tests/ui/test_window.h"
#include "ui/dialogs/face_select_dialog.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/resources.h"
#include "ui/main/composer.h"

using platform::W;

namespace {

struct Sent {
  enum Kind { kText, kImage, kFile } kind;
  WString value;
  bool operator==(const Sent&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Sent& s) {
  return os << "{" << s.kind << ", " << platform::Utf16ToUtf8(s.value) << "}";
}

class RecordingSink : public service::ComposerSink {
 public:
  explicit RecordingSink(WString pasteFolder) : pasteFolder_(std::move(pasteFolder)) {}
  std::vector<Sent> sent;
  bool SendText(const WString& text) override { return Record(Sent::kText, text); }
  bool SendImage(const WString& path) override { return Record(Sent::kImage, path); }
  bool SendFile(const WString& path) override { return Record(Sent::kFile, path); }
  WString PastedPictureFolder() const override { return pasteFolder_; }

 private:
  bool Record(Sent::Kind kind, const WString& value) {
    sent.push_back({kind, value});
    return true;
  }
  WString pasteFolder_;
};

class ComposerTest : public testing::Test {
 protected:
  void SetUp() override {
    sink_ = std::make_unique<RecordingSink>(scratch_.Path("paste"));
    window_.onMessage = [this](unsigned msg, ui::WPARAM wParam, ui::LPARAM) -> ui::LRESULT {
      if (msg == platform::msg::kEmoticonChosen) composer_->InsertEmoticon(0, 0);
      if (msg == ui::kWmDropFiles) {
        composer_->DropFiles(*reinterpret_cast<const std::vector<WString>*>(wParam));
      }
      return 0;
    };
    ASSERT_TRUE(window_.Create(nullptr, u"composer-test", ui::WindowStyle::kTopLevel));
    window_.DragAcceptFiles(true);
    window_.ResizeClient(960, 680);
    Composer::Prompts prompts{
        [this](const ui::rules::FileFilter& filter) {
          filters_.push_back(filter.text);
          return chosen_;
        },
        [this](const ui::rules::Refusal& refusal) { notices_.push_back(refusal.text); }};
    composer_ = std::make_unique<Composer>(window_, window_.FindControl("ChatWindow_SendrichEdit"),
                                           *sink_, prompts);
    edit_ = qobject_cast<QTextEdit*>(ui::qt::WidgetOf(composer_->Edit()));
    ASSERT_NE(edit_, nullptr);
  }
  void TearDown() override {
    composer_.reset();
    window_.Close();
    ui::test::Pump(20);
  }

 public:
  // A sparse file of `size` bytes in the test's folder.
  WString Make(const std::string& name, uint64_t size) { return scratch_.Make(name, size); }

 protected:
  WString Content() const {
    std::u16string text;
    for (const auto& piece : ui::RichEdit(composer_->Edit()).GetContent()) text += piece.value;
    return text;
  }

  ui::test::ScratchFolder scratch_{"composer"};
  std::unique_ptr<RecordingSink> sink_;
  ui::test::RecordingWindow window_{"IMWnd.xml", "DuiLibRes\\skin\\"};
  std::unique_ptr<Composer> composer_;
  QTextEdit* edit_ = nullptr;
  WString chosen_;
  std::vector<WString> filters_;
  std::vector<WString> notices_;
};

struct TextCase {
  const char* name;
  std::function<void(ComposerTest&, QTextEdit*)> compose;
  std::vector<Sent> sent;
  const char* notice;  // empty: none
};

class ComposedText : public ComposerTest, public testing::WithParamInterface<TextCase> {};

TEST_P(ComposedText, IsSentOrKept) {
  const TextCase& c = GetParam();
  c.compose(*this, edit_);
  const WString before = Content();
  composer_->Send();
  EXPECT_EQ(sink_->sent, c.sent);
  std::vector<WString> notices;
  if (*c.notice) notices.push_back(W(c.notice));
  EXPECT_EQ(notices_, notices);
  // Sent: emptied. Nothing sent: the composer keeps what it held.
  EXPECT_EQ(Content(), c.sent.empty() ? before : WString());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ComposedText,
    testing::Values(TextCase{"ThreeSpacesSendNothing",
                             [](auto&, QTextEdit* e) { QTest::keyClicks(e, "   "); },
                             {},
                             ""},
                    TextCase{"ATabAloneIsSent",
                             [](auto&, QTextEdit* e) { QTest::keyClicks(e, "\t"); },
                             {{Sent::kText, u"\t"}},
                             ""},
                    TextCase{"PickerCodeTypedByHand",
                             [](auto&, QTextEdit* e) { QTest::keyClicks(e, "Hi [Smile]"); },
                             {{Sent::kText, W("Hi [微笑]")}},
                             ""},
                    TextCase{"ShiftEnterBreaksTheLine",
                             [](auto&, QTextEdit* e) {
                               QTest::keyClicks(e, "a");
                               QTest::keyClick(e, Qt::Key_Return, Qt::ShiftModifier);
                               QTest::keyClicks(e, "b");
                             },
                             {{Sent::kText, u"a\nb"}},
                             ""},
                    TextCase{
                        "EmoticonImageBetweenTexts",
                        [](auto&, QTextEdit* e) {
                          QTest::keyClicks(e, "ok ");
                          std::string smile = ui::ResourcePath("DuiLibRes\\emoji\\") + "/Smile.png";
                          ui::RichEdit(ui::qt::MakeControl(e)).InsertImage(W(smile), u"[Smile]");
                          QTest::keyClicks(e, "!");
                        },
                        {{Sent::kText, W("ok [微笑]!")}},
                        ""},
                    TextCase{"PathOfA9000ByteFileIsRefused",
                             [](ComposerTest& t, QTextEdit* e) {
                               e->setPlainText(QString::fromStdU16String(t.Make("big.log", 9000)));
                             },
                             {},
                             "发送文本最大为8000字节"},
                    TextCase{
                        "TwentyThousandCharactersAreSent",
                        [](auto&, QTextEdit* e) { e->setPlainText(QString(20000, u'字')); },
                        {{Sent::kText, WString(20000, u'字')}},
                        "",
                    }),
    [](const testing::TestParamInfo<TextCase>& info) { return std::string(info.param.name); });

void PrintTo(const TextCase& c, std::ostream* os) {
  *os << c.name;
}

struct UploadCase {
  const char* name;
  bool picture;  // the picture button, else the file button
  std::function<WString(ComposerTest&)> choose;
  std::optional<Sent::Kind> sent;
  const char* notice;
};

void PrintTo(const UploadCase& c, std::ostream* os) {
  *os << c.name;
}

class Upload : public ComposerTest, public testing::WithParamInterface<UploadCase> {};

TEST_P(Upload, ButtonChecksThenSends) {
  const UploadCase& c = GetParam();
  chosen_ = c.choose(*this);
  c.picture ? composer_->SendPictures() : composer_->SendFiles();
  ASSERT_EQ(filters_.size(), 1u);
  EXPECT_EQ(filters_[0], W(c.picture ? "图像文件(*.bmp;*.jpg;*.jpeg;*.gif;*.png)" : "文件(*.*)"));
  std::vector<Sent> sent;
  if (c.sent) sent.push_back({*c.sent, chosen_});
  EXPECT_EQ(sink_->sent, sent);
  std::vector<WString> notices;
  if (*c.notice) notices.push_back(W(c.notice));
  EXPECT_EQ(notices_, notices);
}

constexpr uint64_t kMiB = 1 << 20;

INSTANTIATE_TEST_SUITE_P(
    Cases, Upload,
    testing::Values(UploadCase{"Png28MiBIsSent", true,
                               [](ComposerTest& t) { return t.Make("a.png", 28 * kMiB); },
                               Sent::kImage, ""},
                    UploadCase{"Png30MBIsRefused", true,
                               [](ComposerTest& t) { return t.Make("b.png", 30000000); },
                               std::nullopt, "发送图片最大为100M"},
                    UploadCase{"PlanDwgIsPointedAtTheDrawingButton", false,
                               [](ComposerTest& t) { return t.Make("plan.dwg", 100); },
                               std::nullopt, "该功能不能发送图纸，请使用发送图纸功能。"},
                    UploadCase{"BusyFileIsRefused", false,
                               [](ComposerTest& t) {
                                 WString p = t.Make("open.xlsx", 100);
                                 // Held by "another program": an flock on another open file.
                                 int fd = ::open(platform::Utf16ToUtf8(p).c_str(), O_RDWR);
                                 ::flock(fd, LOCK_EX);
                                 return p;  // the lock goes with the file when the test ends
                               },
                               std::nullopt, "不能发送正在被打开的文件。"},
                    UploadCase{"BusyPictureIsRefused", true,
                               [](ComposerTest& t) {
                                 WString p = t.Make("shot.png", 100);
                                 t.Make(".~lock.shot.png#", 10);
                                 return p;
                               },
                               std::nullopt, "不能发送正在被打开的图片"},
                    UploadCase{"FileIsSent", false,
                               [](ComposerTest& t) { return t.Make("notes.txt", 100); },
                               Sent::kFile, ""},
                    UploadCase{"CancelSendsNothing", true, [](ComposerTest&) { return WString(); },
                               std::nullopt, ""}),
    [](const testing::TestParamInfo<UploadCase>& info) { return std::string(info.param.name); });

TEST_F(ComposerTest, APastedPictureIsSentAsAPictureAndRichTextArrivesPlain) {
  QImage image(40, 30, QImage::Format_RGB32);
  image.fill(Qt::red);
  QApplication::clipboard()->setImage(image);
  composer_->Paste();
  ASSERT_EQ(ui::RichEdit(composer_->Edit()).GetContent().size(), 1u);

  auto* html = new QMimeData;
  html->setHtml("<b>bold</b> <img src='x.png'> text");
  html->setText("bold text");
  QApplication::clipboard()->setMimeData(html);
  composer_->Paste();

  composer_->Send();
  ASSERT_EQ(sink_->sent.size(), 2u);
  EXPECT_EQ(sink_->sent[0].kind, Sent::kImage);
  EXPECT_EQ(QImage(QString::fromStdU16String(sink_->sent[0].value)).size(), QSize(40, 30));
  EXPECT_EQ(sink_->sent[1], (Sent{Sent::kText, u"bold text"}));
}

TEST_F(ComposerTest, DroppedFilesGoThroughTheButtonsChecks) {
  WString picture = Make("photo.JPG", 100);
  WString file = Make("notes.txt", 100);
  WString drawing = Make("plan.dwg", 100);
  auto* data = new QMimeData;
  data->setUrls({QUrl::fromLocalFile(QString::fromStdU16String(picture)),
                 QUrl::fromLocalFile(QString::fromStdU16String(file)),
                 QUrl::fromLocalFile(QString::fromStdU16String(drawing))});
  // Dropped on the composer: the window takes it, nothing lands as text.
  QWidget* target = edit_->viewport();
  QPointF pos(10, 10);
  QDragEnterEvent enter(pos.toPoint(), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(target, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(pos, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(target, &drop);
  delete data;

  std::vector<Sent> sent{{Sent::kImage, picture}, {Sent::kFile, file}};
  EXPECT_EQ(sink_->sent, sent);
  EXPECT_EQ(notices_, std::vector<WString>{W("该功能不能发送图纸，请使用发送图纸功能。")});
  EXPECT_EQ(Content(), u"");
}

TEST_F(ComposerTest, AnEmoticonChosenInThePickerIsSentAsItsCode) {
  window_.ShowWindow(true);
  composer_->OpenEmoticons();
  CFaceSelectDialog* picker = composer_->Picker();
  ASSERT_NE(picker, nullptr);
  ASSERT_TRUE(picker->IsCreated());
  picker->SendNotify(picker->FindControl("Leepy"), ui::kNotifyClick);
  ASSERT_TRUE(ui::test::PumpUntil([&] { return !picker->IsCreated(); }));
  ASSERT_TRUE(ui::test::PumpUntil([&] { return !picker->HasChoice(); }));  // read by 3153
  EXPECT_EQ(Content(), u"[Leepy]");
  composer_->Send();
  EXPECT_EQ(sink_->sent, (std::vector<Sent>{{Sent::kText, W("[困]")}}));
}

}  // namespace
