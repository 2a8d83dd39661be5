#include "ui/rules/send_limits.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/ui/rules/scratch_folder.h"
#include "ui/rules/busy_file.h"

namespace fs = std::filesystem;
using platform::W;
using ui::rules::AttachmentKind;
using ui::rules::Verdict;

namespace {

struct BlankCase {
  const char16_t* text;
  bool nothing;
};

TEST(SendLimits, OnlySpacesAreNothingToSend) {
  const BlankCase cases[] = {{u"", true},      {u"   ", true},     {u"\t", false},
                             {u" \n ", false}, {u"\u3000", false}, {u" a ", false}};
  for (const BlankCase& c : cases) {
    EXPECT_EQ(ui::rules::IsNothingToSend(c.text), c.nothing) << platform::Utf16ToUtf8(c.text);
  }
}

TEST(SendLimits, DrawingAndPictureExtensionsInAnyCase) {
  for (const char* drawing : {"plan.dwg", "PLAN.DWG", "a.Dxf", "/x/b.dwt", "c.DWS"}) {
    EXPECT_TRUE(ui::rules::IsDrawingFile(W(drawing))) << drawing;
  }
  for (const char* other : {"a.dwgx", "dwg", "/x.dwg/readme", "a.dwg.txt", "a.png"}) {
    EXPECT_FALSE(ui::rules::IsDrawingFile(W(other))) << other;
  }
  for (const char* picture : {"x.PNG", "y.jpeg", "z.Jpg", "a.gif", "b.bmp"}) {
    EXPECT_TRUE(ui::rules::IsPictureFile(W(picture))) << picture;
  }
  for (const char* other : {"y.webp", "png", "a.png.zip"}) {
    EXPECT_FALSE(ui::rules::IsPictureFile(W(other))) << other;
  }
}

TEST(SendLimits, SizesOverTheLimitAndAllFrom2GiBAreRefused) {
  constexpr uint64_t kGiB = 1ULL << 30;
  struct Case {
    std::optional<uint64_t> size;
    uint64_t limit;
    bool over;
  };
  const Case cases[] = {
      {ui::rules::kMaxPictureBytes, ui::rules::kMaxPictureBytes, false},
      {ui::rules::kMaxPictureBytes + 1, ui::rules::kMaxPictureBytes, true},
      {2 * kGiB, ui::rules::kMaxFileBytes, true},
      {4 * kGiB + 1, ui::rules::kMaxFileBytes, true},  // no 32-bit wrap to "1 byte"
      {std::nullopt, ui::rules::kMaxFileBytes, false},
  };
  for (const Case& c : cases) EXPECT_EQ(ui::rules::ExceedsLimit(c.size, c.limit), c.over);
}

class SendFiles : public testing::Test {
 protected:
  void TearDown() override {
    for (int fd : held_) ::close(fd);
  }
  WString Make(const std::string& name, uint64_t size) { return scratch_.Make(name, size); }
  int Hold(const WString& path) {
    int fd = ::open(platform::Utf16ToUtf8(path).c_str(), O_RDWR);
    held_.push_back(fd);
    return fd;
  }

  ui::test::ScratchFolder scratch_{"send-limits"};
  const fs::path& dir_ = scratch_.path();
  std::vector<int> held_;
};

TEST_F(SendFiles, ButtonChecksInTheirOrder) {
  constexpr uint64_t MiB = 1 << 20;
  struct Case {
    const char* name;
    AttachmentKind kind;
    std::function<WString()> make;
    Verdict want;
  };
  const Case cases[] = {
      {"28 MiB picture", AttachmentKind::kPicture, [&] { return Make("a.png", 28 * MiB); },
       Verdict::kSend},
      {"30 MB picture", AttachmentKind::kPicture, [&] { return Make("b.png", 30000000); },
       Verdict::kTooLarge},
      {"100 MiB file", AttachmentKind::kFile, [&] { return Make("c.zip", 100 * MiB); },
       Verdict::kSend},
      {"file one byte over", AttachmentKind::kFile, [&] { return Make("d.zip", 100 * MiB + 1); },
       Verdict::kTooLarge},
      {"3 GiB file", AttachmentKind::kFile, [&] { return Make("e.iso", 3ULL << 30); },
       Verdict::kTooLarge},
      {"drawing (exists or not)", AttachmentKind::kFile,
       [&] { return W((dir_ / "plan.DWG").string()); }, Verdict::kDrawing},
      {"a drawing as picture is only checked as picture", AttachmentKind::kPicture,
       [&] { return Make("p.dwg", 10); }, Verdict::kSend},
      {"missing", AttachmentKind::kFile, [&] { return W((dir_ / "gone.txt").string()); },
       Verdict::kBusy},
      {"folder", AttachmentKind::kFile,
       [&] {
         fs::create_directory(dir_ / "sub");
         return W((dir_ / "sub").string());
       },
       Verdict::kBusy},
      {"read-only", AttachmentKind::kPicture,
       [&] {
         WString p = Make("ro.png", 10);
         fs::permissions(platform::Utf16ToUtf8(p), fs::perms::owner_read | fs::perms::group_read);
         return p;
       },
       Verdict::kBusy},
      {"flock held", AttachmentKind::kFile,
       [&] {
         WString p = Make("held.txt", 10);
         ::flock(Hold(p), LOCK_SH);
         return p;
       },
       Verdict::kBusy},
      {"record lock held", AttachmentKind::kPicture,
       [&] {
         WString p = Make("rec.png", 10);
         struct flock lock {};
         lock.l_type = F_RDLCK;
         lock.l_whence = SEEK_SET;
         ::fcntl(Hold(p), F_OFD_SETLK, &lock);
         return p;
       },
       Verdict::kBusy},
      {"LibreOffice lock file", AttachmentKind::kFile,
       [&] {
         Make(".~lock.report.odt#", 10);
         return Make("report.odt", 10);
       },
       Verdict::kBusy},
      {"Office owner file, long name", AttachmentKind::kFile,
       [&] {
         Make("~$cument.docx", 10);
         return Make("document.docx", 10);
       },
       Verdict::kBusy},
      {"opened for reading only is free", AttachmentKind::kFile,
       [&] {
         WString p = Make("read.txt", 10);
         held_.push_back(::open(platform::Utf16ToUtf8(p).c_str(), O_RDONLY));
         return p;
       },
       Verdict::kSend},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ui::rules::CheckAttachment(c.kind, c.make()), c.want) << c.name;
  }
}

TEST_F(SendFiles, ATextNamingAFileOver8000BytesIsRefused) {
  EXPECT_TRUE(ui::rules::NamesLargeFile(Make("big.txt", 9000)));
  EXPECT_FALSE(ui::rules::NamesLargeFile(Make("small.txt", 8000)));
  EXPECT_FALSE(ui::rules::NamesLargeFile(W(dir_.string())));
  EXPECT_FALSE(ui::rules::NamesLargeFile(W((dir_ / "none.txt").string())));
  EXPECT_FALSE(ui::rules::NamesLargeFile(WString(20000, u'x')));
}

}  // namespace
