#include "ui/rules/emoticon_table.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

using platform::W;
using ui::rules::EmoticonTable;

namespace {

TEST(EmoticonTable, FortyNineEntriesInPickerOrderEachWithItsImage) {
  auto table = EmoticonTable();
  ASSERT_EQ(table.size(), ui::rules::kEmoticonCount);
  std::set<WString> codes, pickerCodes;
  const std::filesystem::path emoji = std::filesystem::path(IM_RESOURCE_ROOT) / "DuiLibRes/emoji";
  for (size_t i = 0; i < table.size(); ++i) {
    const auto& e = table[i];
    EXPECT_EQ(e.index, static_cast<int>(i));
    codes.insert(e.code);
    pickerCodes.insert(e.pickerCode);
    // The display form is the code's name inside /f["..."].
    EXPECT_EQ(e.displayForm, u"/f[\"" + e.code.substr(1, e.code.size() - 2) + u"\"]");
    std::string image = platform::Utf16ToUtf8(e.ImageName()) + ".png";
    EXPECT_TRUE(std::filesystem::exists(emoji / image)) << image;
  }
  EXPECT_EQ(codes.size(), table.size());
  EXPECT_EQ(pickerCodes.size(), table.size());
}

struct Entry {
  int index;
  const char* code;
  const char* pickerCode;
};

class EmoticonEntry : public testing::TestWithParam<Entry> {};

TEST_P(EmoticonEntry, IsFoundByEachOfItsNames) {
  const Entry& want = GetParam();
  const auto* byPicker = ui::rules::FindByPickerCode(W(want.pickerCode));
  ASSERT_NE(byPicker, nullptr);
  EXPECT_EQ(byPicker->index, want.index);
  EXPECT_EQ(byPicker->code, W(want.code));
  EXPECT_EQ(ui::rules::FindByCode(W(want.code)), byPicker);
  EXPECT_EQ(ui::rules::FindByImageName(byPicker->ImageName()), byPicker);
}

INSTANTIATE_TEST_SUITE_P(
    Spots, EmoticonEntry,
    testing::Values(Entry{0, "[么么哒]", "[Muah]"}, Entry{9, "[吐]", "[ThrewUp]"},
                    Entry{13, "[困]", "[Leepy]"}, Entry{22, "[微笑]", "[Smile]"},
                    Entry{31, "[撇嘴]", "[Squirming]"}, Entry{48, "[鼓掌]", "[Applaud]"}));

TEST(EmoticonTable, UnknownNamesFindNothing) {
  EXPECT_EQ(ui::rules::FindByPickerCode(u"[Sleepy]"), nullptr);
  EXPECT_EQ(ui::rules::FindByPickerCode(u"[smile]"), nullptr);
  EXPECT_EQ(ui::rules::FindByImageName(u""), nullptr);
  EXPECT_EQ(ui::rules::FindByCode(u"微笑"), nullptr);
}

struct Conversion {
  const char* typed;
  const char* sent;
};

class PickerCodes : public testing::TestWithParam<Conversion> {};

TEST_P(PickerCodes, BecomeCodes) {
  EXPECT_EQ(ui::rules::PickerCodesToCodes(W(GetParam().typed)), W(GetParam().sent));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PickerCodes,
    testing::Values(Conversion{"Hi [Smile]", "Hi [微笑]"},
                    Conversion{"[Smile][Smile]x[Smile]", "[微笑][微笑]x[微笑]"},
                    Conversion{"[Leepy] [ThrewUp] [Applaud]", "[困] [吐] [鼓掌]"},
                    Conversion{"[smile] [Sleepy] [Smile", "[smile] [Sleepy] [Smile"},
                    Conversion{"[[Smile]]", "[[微笑]]"}, Conversion{"[微笑]", "[微笑]"},
                    Conversion{"", ""}));

TEST(EmoticonTable, ReceivedTextSplitsAtItsCodes) {
  std::vector<ui::rules::TextPiece> pieces = ui::rules::SplitEmoticons(u"好[微笑][不存在][鼓掌]");
  ASSERT_EQ(pieces.size(), 4u);
  EXPECT_EQ(pieces[0].text, u"好");
  ASSERT_NE(pieces[1].emoticon, nullptr);
  EXPECT_EQ(pieces[1].emoticon->ImageName(), u"Smile");
  EXPECT_EQ(pieces[2].text, u"[不存在]");
  EXPECT_EQ(pieces[2].emoticon, nullptr);
  EXPECT_EQ(pieces[3].emoticon->ImageName(), u"Applaud");
  // A bracket that opens no code stays text, and the code right after it counts.
  pieces = ui::rules::SplitEmoticons(u"[[微笑]");
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_EQ(pieces[0].text, u"[");
  ASSERT_NE(pieces[1].emoticon, nullptr);
}

}  // namespace
