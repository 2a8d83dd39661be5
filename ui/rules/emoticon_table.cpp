#include "ui/rules/emoticon_table.h"

#include <algorithm>
#include <vector>

namespace ui::rules {
namespace {

struct Names {
  const char* chinese;
  const char* english;
};

// In picker order. The English names are kept as they have always been
// ("Leepy", "ThrewUp"): peers' clients match them literally.
constexpr Names kNames[kEmoticonCount] = {
    {"么么哒", "Muah"},     {"偷笑", "Snicker"},   {"傲慢", "Arrogant"},   {"再见", "Goodbye"},
    {"冷汗", "ColdSweat"},  {"发呆", "Daze"},      {"可怜", "Pathetic"},   {"可爱", "Lovely"},
    {"右哼哼", "RightHum"}, {"吐", "ThrewUp"},     {"吓", "Scare"},        {"咒骂", "Curse"},
    {"嘘", "Hush"},         {"困", "Leepy"},       {"坏笑", "Smirk"},      {"大哭", "Cry"},
    {"奋斗", "Struggle"},   {"委屈", "Wronged"},   {"害羞", "Shy"},        {"尴尬", "Awkward"},
    {"左哼哼", "LeftHum"},  {"得意", "Proud"},     {"微笑", "Smile"},      {"怒", "Angry"},
    {"惊恐", "Panic"},      {"惊讶", "Surprised"}, {"憨笑", "SillySmile"}, {"打哈欠", "Yawn"},
    {"抓狂", "Crazy"},      {"折磨", "Torture"},   {"抠鼻", "PickNose"},   {"撇嘴", "Squirming"},
    {"擦汗", "WipeSweat"},  {"晕", "Dizzy"},       {"流汗", "Sweat"},      {"流泪", "Tears"},
    {"疑问", "Doubt"},      {"白眼", "Contempt"},  {"睡觉", "GoToBed"},    {"糗大了", "Shame"},
    {"色", "Lascivious"},   {"调皮", "Naughty"},   {"鄙视", "Despise"},    {"酷", "Cool"},
    {"闭嘴", "ShutUp"},     {"阴险", "Insidious"}, {"难过", "Sad"},        {"饥饿", "Hunger"},
    {"鼓掌", "Applaud"},
};

std::vector<Emoticon> BuildTable() {
  std::vector<Emoticon> table;
  table.reserve(kEmoticonCount);
  for (size_t i = 0; i < kEmoticonCount; ++i) {
    WString chinese = platform::W(kNames[i].chinese);
    WString english = platform::W(kNames[i].english);
    table.push_back(Emoticon{static_cast<int>(i), u"[" + chinese + u"]",
                             u"/f[\"" + chinese + u"\"]", u"[" + english + u"]"});
  }
  return table;
}

template <typename Field>
const Emoticon* FindBy(std::u16string_view value, Field field) {
  for (const Emoticon& e : EmoticonTable()) {
    if (field(e) == value) return &e;
  }
  return nullptr;
}

}  // namespace

WString Emoticon::ImageName() const {
  return pickerCode.size() < 2 ? WString() : pickerCode.substr(1, pickerCode.size() - 2);
}

std::span<const Emoticon> EmoticonTable() {
  static const std::vector<Emoticon> table = BuildTable();
  return table;
}

const Emoticon* FindByPickerCode(std::u16string_view pickerCode) {
  return FindBy(pickerCode, [](const Emoticon& e) -> std::u16string_view { return e.pickerCode; });
}

const Emoticon* FindByImageName(std::u16string_view imageName) {
  if (imageName.empty()) return nullptr;
  return FindByPickerCode(u"[" + WString(imageName) + u"]");
}

const Emoticon* FindByCode(std::u16string_view code) {
  return FindBy(code, [](const Emoticon& e) -> std::u16string_view { return e.code; });
}

WString PickerCodesToCodes(WString text) {
  for (const Emoticon& e : EmoticonTable()) {
    for (size_t at = text.find(e.pickerCode); at != WString::npos;
         at = text.find(e.pickerCode, at + e.code.size())) {
      text.replace(at, e.pickerCode.size(), e.code);
    }
  }
  return text;
}

std::vector<TextPiece> SplitEmoticons(const WString& text) {
  // Codes are short: a '[' is only looked at that far, so a text of many
  // brackets stays linear.
  static const size_t longest = [] {
    size_t n = 0;
    for (const Emoticon& e : EmoticonTable()) n = std::max(n, e.code.size());
    return n;
  }();
  std::vector<TextPiece> pieces;
  WString plain;
  for (size_t i = 0; i < text.size();) {
    const Emoticon* e = nullptr;
    if (text[i] == u'[') {
      std::u16string_view window = std::u16string_view(text).substr(i, longest);
      size_t close = window.find(u']');
      if (close != std::u16string_view::npos) e = FindByCode(window.substr(0, close + 1));
    }
    if (!e) {
      plain.push_back(text[i++]);
      continue;
    }
    if (!plain.empty()) pieces.push_back({std::move(plain), nullptr});
    plain.clear();
    pieces.push_back({e->code, e});
    i += e->code.size();
  }
  if (!plain.empty()) pieces.push_back({std::move(plain), nullptr});
  return pieces;
}

}  // namespace ui::rules
