#include "ui/kit/attributes.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace ui {
namespace {

std::string Text(const std::optional<Rect>& r) {
  if (!r) return "";
  return std::to_string(r->left) + "," + std::to_string(r->top) + "," + std::to_string(r->right) +
         "," + std::to_string(r->bottom);
}

// Every parser's result as one comparable text; "-" is a rejected value.
std::string Parsed(char parser, const char* text) {
  if (parser == 'c') {
    auto argb = ParseColor(text);
    char hex[16];
    std::snprintf(hex, sizeof hex, "%08X", argb.value_or(0));
    return argb ? hex : "-";
  }
  if (parser == 'b') {
    auto b = ParseBool(text);
    return b ? (*b ? "true" : "false") : "-";
  }
  if (parser == 'r') return ParseRect(text) ? Text(ParseRect(text)) : "-";
  auto image = ParseImageAttribute(text);
  return image ? image->file + "|" + Text(image->source) + "|" + Text(image->dest) : "-";
}

TEST(SkinAttributes, ParseTheSkinFormsAndRejectTheRest) {
  // Each text starts with its parser: c colour, b switch, r rectangle, i image.
  // clang-format off
  const std::pair<const char*, const char*> cases[] = {
      {"c #FF212830", "FF212830"}, {"c #ff8d8d8d", "FF8D8D8D"}, {"c 0xFF5DC8CD", "FF5DC8CD"},
      {"c #00000000", "00000000"}, {"c #4EC5CE", "FF4EC5CE"}, {"c  #FFFFFFFF ", "FFFFFFFF"},
      {"c FF212830", "-"}, {"c #FF21283", "-"}, {"c #GG212830", "-"}, {"c ", "-"}, {"c #", "-"},
      {"c #FF2128300", "-"}, {"b true", "true"}, {"b FALSE", "false"}, {"b  True ", "true"},
      {"b 1", "-"}, {"b ", "-"}, {"r 36,0,44,8", "36,0,44,8"}, {"r  -1, 2 ,3,4", "-1,2,3,4"},
      {"r 1,2,3", "-"}, {"r 1,2,3,4,5", "-"}, {"r a,b,c,d", "-"}, {"r ", "-"}, {"r 1,,3,4", "-"},
      {"i file='..\\img\\UnReadDot.png' source='0,0,0,0' dest='36,0,44,8'",
       "..\\img\\UnReadDot.png|0,0,0,0|36,0,44,8"},
      {"i ..\\img\\FriendsList_normal.png", "..\\img\\FriendsList_normal.png||"}, {"i ", "||"},
      {"i file=\"a b.png\" dest=\"0,0,8,8\"", "a b.png||0,0,8,8"}, {"i file='x.png", "-"},
      {"i file=x.png", "-"}, {"i file='x.png' dest='1,2'", "-"},
      {"i file='x.png' corner='1,2,3,4'", "-"}, {"i file='x.png' dest", "-"},
  };
  // clang-format on
  for (auto [row, expected] : cases) EXPECT_EQ(Parsed(row[0], row + 2), expected) << row;
}

TEST(SkinAttributes, ResolveSkinPathFollowsBackslashesAndParentFolders) {
  const char* cases[][3] = {
      // path, base folder, result
      {"..\\img\\UnReadDot.png", "/opt/app/DuiLibRes/skin", "/opt/app/DuiLibRes/img/UnReadDot.png"},
      {"../img/a.png", "/opt/app/DuiLibRes/skin/", "/opt/app/DuiLibRes/img/a.png"},
      {"x.png", "res\\skin", "res/skin/x.png"},
      {"/abs/x.png", "/opt", "/abs/x.png"},
      {"C:\\img\\x.png", "/opt", "C:/img/x.png"},
      {".\\a\\.\\b.png", "/r", "/r/a/b.png"},
      {"DuiLibRes\\skin\\", "/root", "/root/DuiLibRes/skin"},
  };
  for (auto& c : cases) EXPECT_EQ(ResolveSkinPath(c[0], c[1]), c[2]) << c[0];
}

}  // namespace
}  // namespace ui
