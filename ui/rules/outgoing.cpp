#include "ui/rules/outgoing.h"

#include "ui/rules/emoticon_table.h"

namespace ui::rules {
namespace {

bool IsPictureAt(const std::vector<Outgoing>& items, size_t i) {
  return i < items.size() && items[i].kind == Outgoing::kPicture;
}

void TrimLineBreaks(WString& text, bool front, bool back) {
  auto isBreak = [](char16_t c) { return c == u'\n' || c == u'\r'; };
  if (back) {
    while (!text.empty() && isBreak(text.back())) text.pop_back();
  }
  if (front) {
    size_t n = 0;
    while (n < text.size() && isBreak(text[n])) ++n;
    text.erase(0, n);
  }
}

}  // namespace

std::vector<Outgoing> PrepareOutgoing(const std::vector<Outgoing>& composed) {
  std::vector<Outgoing> out;
  for (size_t i = 0; i < composed.size(); ++i) {
    const Outgoing& item = composed[i];
    if (item.kind == Outgoing::kPicture) {
      if (!item.value.empty()) out.push_back(item);
      continue;
    }
    WString text = PickerCodesToCodes(item.value);
    TrimLineBreaks(text, i > 0 && IsPictureAt(composed, i - 1), IsPictureAt(composed, i + 1));
    if (!IsNothingToSend(text)) out.push_back({Outgoing::kText, std::move(text)});
  }
  return out;
}

std::optional<Refusal> CheckOutgoing(const std::vector<Outgoing>& items) {
  for (const Outgoing& item : items) {
    if (item.kind == Outgoing::kText) {
      if (NamesLargeFile(item.value)) return TextTooLargeRefusal();
      continue;
    }
    Verdict verdict = CheckAttachment(AttachmentKind::kPicture, item.value);
    if (verdict != Verdict::kSend) return RefusalFor(AttachmentKind::kPicture, verdict);
  }
  return std::nullopt;
}

}  // namespace ui::rules
