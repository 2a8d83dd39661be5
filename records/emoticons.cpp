#include "records/emoticons.h"

namespace records {

const std::array<Emoticon, kEmoticonCount>& EmoticonTable() {
  static constexpr std::array<Emoticon, kEmoticonCount> kTable{{
      {u"[么么哒]", u"[Muah]"},    {u"[偷笑]", u"[Snicker]"},   {u"[傲慢]", u"[Arrogant]"},
      {u"[再见]", u"[Goodbye]"},   {u"[冷汗]", u"[ColdSweat]"}, {u"[发呆]", u"[Daze]"},
      {u"[可怜]", u"[Pathetic]"},  {u"[可爱]", u"[Lovely]"},    {u"[右哼哼]", u"[RightHum]"},
      {u"[吐]", u"[ThrewUp]"},     {u"[吓]", u"[Scare]"},       {u"[咒骂]", u"[Curse]"},
      {u"[嘘]", u"[Hush]"},        {u"[困]", u"[Leepy]"},       {u"[坏笑]", u"[Smirk]"},
      {u"[大哭]", u"[Cry]"},       {u"[奋斗]", u"[Struggle]"},  {u"[委屈]", u"[Wronged]"},
      {u"[害羞]", u"[Shy]"},       {u"[尴尬]", u"[Awkward]"},   {u"[左哼哼]", u"[LeftHum]"},
      {u"[得意]", u"[Proud]"},     {u"[微笑]", u"[Smile]"},     {u"[怒]", u"[Angry]"},
      {u"[惊恐]", u"[Panic]"},     {u"[惊讶]", u"[Surprised]"}, {u"[憨笑]", u"[SillySmile]"},
      {u"[打哈欠]", u"[Yawn]"},    {u"[抓狂]", u"[Crazy]"},     {u"[折磨]", u"[Torture]"},
      {u"[抠鼻]", u"[PickNose]"},  {u"[撇嘴]", u"[Squirming]"}, {u"[擦汗]", u"[WipeSweat]"},
      {u"[晕]", u"[Dizzy]"},       {u"[流汗]", u"[Sweat]"},     {u"[流泪]", u"[Tears]"},
      {u"[疑问]", u"[Doubt]"},     {u"[白眼]", u"[Contempt]"},  {u"[睡觉]", u"[GoToBed]"},
      {u"[糗大了]", u"[Shame]"},   {u"[色]", u"[Lascivious]"},  {u"[调皮]", u"[Naughty]"},
      {u"[鄙视]", u"[Despise]"},   {u"[酷]", u"[Cool]"},        {u"[闭嘴]", u"[ShutUp]"},
      {u"[阴险]", u"[Insidious]"}, {u"[难过]", u"[Sad]"},       {u"[饥饿]", u"[Hunger]"},
      {u"[鼓掌]", u"[Applaud]"},
  }};
  return kTable;
}

WString EmoticonImageName(const Emoticon& emoticon) {
  std::u16string_view name = emoticon.pickerCode.substr(1, emoticon.pickerCode.size() - 2);
  return WString(name);
}

namespace {

const Emoticon* CodeAt(const WString& text, size_t at) {
  for (const Emoticon& e : EmoticonTable()) {
    if (std::u16string_view(text).substr(at, e.code.size()) == e.code) return &e;
  }
  return nullptr;
}

}  // namespace

std::vector<TextPiece> SplitEmoticons(const WString& text) {
  std::vector<TextPiece> pieces;
  WString plain;
  for (size_t i = 0; i < text.size();) {
    const Emoticon* e = text[i] == u'[' ? CodeAt(text, i) : nullptr;
    if (!e) {
      plain.push_back(text[i++]);
      continue;
    }
    if (!plain.empty()) pieces.push_back({std::move(plain), nullptr});
    plain.clear();
    pieces.push_back({WString(e->code), e});
    i += e->code.size();
  }
  if (!plain.empty()) pieces.push_back({std::move(plain), nullptr});
  return pieces;
}

}  // namespace records
