#include "ui/rules/outgoing.h"

#include <gtest/gtest.h>

#include "tests/ui/rules/scratch_folder.h"

using platform::W;
using ui::rules::Outgoing;

namespace {

Outgoing Text(const char* utf8) {
  return {Outgoing::kText, W(utf8)};
}
Outgoing Picture(const char* path) {
  return {Outgoing::kPicture, W(path)};
}

struct Case {
  const char* name;
  std::vector<Outgoing> composed;
  std::vector<Outgoing> sent;
};

void PrintTo(const Case& c, std::ostream* os) {
  *os << c.name;
}

class Prepare : public testing::TestWithParam<Case> {};

TEST_P(Prepare, WhatIsSent) {
  EXPECT_EQ(ui::rules::PrepareOutgoing(GetParam().composed), GetParam().sent);
}

INSTANTIATE_TEST_SUITE_P(
    Composed, Prepare,
    testing::Values(
        Case{"ThreeSpaces", {Text("   ")}, {}}, Case{"TabAlone", {Text("\t")}, {Text("\t")}},
        Case{"TypedPickerCode", {Text("Hi [Smile]")}, {Text("Hi [微笑]")}},
        Case{"LineBreaksKeptInText", {Text("\na\n")}, {Text("\na\n")}},
        Case{"TextAroundPicture",
             {Text("look\n"), Picture("/p.png"), Text("\nhere")},
             {Text("look"), Picture("/p.png"), Text("here")}},
        Case{"TwoPicturesOnTwoLines",
             {Picture("/a.png"), Text("\n"), Picture("/b.png")},
             {Picture("/a.png"), Picture("/b.png")}},
        Case{"SpacesBesidePicture", {Text("  "), Picture("/a.png")}, {Picture("/a.png")}}),
    [](const testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

TEST(CheckOutgoing, RefusesTheFirstBadItemAndPassesOrdinaryLongText) {
  ui::test::ScratchFolder scratch("outgoing");
  const WString big = scratch.Make("big.txt", 9000);
  const WString huge = scratch.Make("huge.png", 30000000);

  EXPECT_FALSE(ui::rules::CheckOutgoing({{Outgoing::kText, WString(20000, u'x')}}).has_value());
  auto text = ui::rules::CheckOutgoing({Text("ok"), {Outgoing::kText, big}});
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(text->text, W("发送文本最大为8000字节"));
  EXPECT_EQ(text->title, W("发送"));
  auto picture = ui::rules::CheckOutgoing({Text("ok"), {Outgoing::kPicture, huge}});
  ASSERT_TRUE(picture.has_value());
  EXPECT_EQ(picture->text, W("发送图片最大为100M"));
}

}  // namespace
