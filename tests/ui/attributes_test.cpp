#include "ui/kit/attributes.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

TEST(ParseColor, ReadsTheSkinForms) {
  struct Case {
    const char* text;
    std::optional<std::uint32_t> argb;
  } cases[] = {
      {"#FF212830", 0xFF212830u}, {"#ff8d8d8d", 0xFF8D8D8Du}, {"0xFF5DC8CD", 0xFF5DC8CDu},
      {"#00000000", 0x00000000u}, {"#4EC5CE", 0xFF4EC5CEu},   {" #FFFFFFFF ", 0xFFFFFFFFu},
      {"FF212830", std::nullopt}, {"#FF21283", std::nullopt}, {"#GG212830", std::nullopt},
      {"", std::nullopt},         {"#", std::nullopt},        {"#FF2128300", std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(ParseColor(c.text), c.argb) << c.text;
}

TEST(ParseBool, AcceptsOnlyTrueAndFalse) {
  EXPECT_EQ(ParseBool("true"), true);
  EXPECT_EQ(ParseBool("FALSE"), false);
  EXPECT_EQ(ParseBool(" True "), true);
  EXPECT_EQ(ParseBool("1"), std::nullopt);
  EXPECT_EQ(ParseBool(""), std::nullopt);
}

TEST(ParseRect, NeedsFourIntegers) {
  std::optional<Rect> r = ParseRect("36,0,44,8");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->left, 36);
  EXPECT_EQ(r->top, 0);
  EXPECT_EQ(r->Width(), 8);
  EXPECT_EQ(r->Height(), 8);
  EXPECT_TRUE(ParseRect(" -1, 2 ,3,4"));
  for (const char* bad : {"1,2,3", "1,2,3,4,5", "a,b,c,d", "", "1,,3,4"}) {
    EXPECT_FALSE(ParseRect(bad)) << bad;
  }
}

TEST(ParseImageAttribute, ReadsFileSourceAndDest) {
  auto image =
      ParseImageAttribute("file='..\\img\\UnReadDot.png' source='0,0,0,0' dest='36,0,44,8'");
  ASSERT_TRUE(image);
  EXPECT_EQ(image->file, "..\\img\\UnReadDot.png");
  ASSERT_TRUE(image->source);
  EXPECT_EQ(image->source->Width(), 0);
  ASSERT_TRUE(image->dest);
  EXPECT_EQ(image->dest->left, 36);
  EXPECT_EQ(image->dest->right, 44);

  auto bare = ParseImageAttribute("..\\img\\FriendsList_normal.png");
  ASSERT_TRUE(bare);
  EXPECT_EQ(bare->file, "..\\img\\FriendsList_normal.png");
  EXPECT_FALSE(bare->dest);

  auto none = ParseImageAttribute("");
  ASSERT_TRUE(none);
  EXPECT_TRUE(none->file.empty());

  auto doubleQuoted = ParseImageAttribute("file=\"a b.png\" dest=\"0,0,8,8\"");
  ASSERT_TRUE(doubleQuoted);
  EXPECT_EQ(doubleQuoted->file, "a b.png");

  for (const char* bad : {"file='x.png", "file=x.png", "file='x.png' dest='1,2'",
                          "file='x.png' corner='1,2,3,4'", "file='x.png' dest"}) {
    EXPECT_FALSE(ParseImageAttribute(bad)) << bad;
  }
}

TEST(ResolveSkinPath, FollowsBackslashesAndParentFolders) {
  struct Case {
    const char* path;
    const char* base;
    const char* expected;
  } cases[] = {
      {"..\\img\\UnReadDot.png", "/opt/app/DuiLibRes/skin", "/opt/app/DuiLibRes/img/UnReadDot.png"},
      {"../img/a.png", "/opt/app/DuiLibRes/skin/", "/opt/app/DuiLibRes/img/a.png"},
      {"x.png", "res\\skin", "res/skin/x.png"},
      {"/abs/x.png", "/opt", "/abs/x.png"},
      {"C:\\img\\x.png", "/opt", "C:/img/x.png"},
      {".\\a\\.\\b.png", "/r", "/r/a/b.png"},
      {"DuiLibRes\\skin\\", "/root", "/root/DuiLibRes/skin"},
  };
  for (const Case& c : cases) EXPECT_EQ(ResolveSkinPath(c.path, c.base), c.expected) << c.path;
}

}  // namespace
}  // namespace ui
