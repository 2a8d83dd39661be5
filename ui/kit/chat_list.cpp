#include "ui/kit/chat_list.h"

#include "ui/kit/attributes.h"
#include "ui/kit/qt/chat_list_view.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/qt_text.h"

namespace ui {
namespace {

using qt::ToQ;

qt::ChatListView* ViewOf(const Control& list) {
  return qobject_cast<qt::ChatListView*>(qt::WidgetOf(list));
}

// The item at `row` of the list, with its view.
struct ItemRef {
  qt::ChatListView* view = nullptr;
  qt::ChatItem* item = nullptr;
  explicit operator bool() const { return item != nullptr; }
};

ItemRef ItemAt(const Control& list, int row) {
  qt::ChatListView* view = ViewOf(list);
  return ItemRef{view, view ? view->items()->At(row) : nullptr};
}

// The content changed: laid out again when next needed, its height estimated
// again meanwhile.
void ContentChanged(const ItemRef& ref, int row) {
  ref.item->doc.reset();
  ref.item->measured = false;
  ref.view->items()->Changed(row, ref.view->Fit(*ref.item, false));
}

// Items mostly share one inset: the last one parsed is kept.
std::optional<QMargins> ParseInset(const WString& value) {
  static WString lastText;
  static std::optional<QMargins> lastInset;
  if (value == lastText) return lastInset;
  std::optional<Rect> rect = ParseRect(platform::Utf16ToUtf8(value));
  lastText = value;
  lastInset.reset();
  if (rect) lastInset = QMargins(rect->left, rect->top, rect->right, rect->bottom);
  return lastInset;
}

}  // namespace

ChatList::ChatList(const Control& list) {
  if (ViewOf(list)) list_ = list;
}

ChatList::operator bool() const {
  return ViewOf(list_) != nullptr;
}

int ChatList::Count() const {
  qt::ChatListView* view = ViewOf(list_);
  return view ? view->items()->rowCount() : 0;
}

int ChatList::Add(std::string_view skinFile, uint64_t itemId, int index) {
  qt::ChatListView* view = ViewOf(list_);
  const qt::ChatTemplate* tpl = view ? view->Template(skinFile) : nullptr;
  if (!tpl) return -1;
  auto item = std::make_unique<qt::ChatItem>();
  item->itemId = itemId;
  item->tpl = tpl;
  item->values.reserve(6);  // what a message's item holds
  item->height = tpl->stamp->height();
  return view->items()->Insert(index, std::move(item));
}

int ChatList::Find(uint64_t itemId) const {
  qt::ChatListView* view = ViewOf(list_);
  return view ? view->items()->Find(itemId) : -1;
}

uint64_t ChatList::ItemId(int row) const {
  ItemRef ref = ItemAt(list_, row);
  return ref ? ref.item->itemId : 0;
}

std::string ChatList::TemplateOf(int row) const {
  ItemRef ref = ItemAt(list_, row);
  return ref ? ref.item->tpl->file : std::string();
}

void ChatList::RemoveAll() {
  if (qt::ChatListView* view = ViewOf(list_)) view->items()->Clear();
}

void ChatList::Set(int row, std::string_view control, std::string_view attribute,
                   const WString& value) {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return;
  if (!ref.item->SetValue(qt::ChatSlotOf(control, attribute), value)) return;
  // The inset changes where the content wraps.
  if (attribute == "inset") {
    ref.item->inset = ParseInset(value);
    ContentChanged(ref, row);
  } else {
    ref.view->items()->Changed(row, false);
  }
}

WString ChatList::Get(int row, std::string_view control, std::string_view attribute) const {
  ItemRef ref = ItemAt(list_, row);
  const WString* value = ref ? ref.item->Value(qt::ChatSlotOf(control, attribute)) : nullptr;
  return value ? *value : WString();
}

void ChatList::AppendText(int row, const std::vector<ChatRun>& runs) {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return;
  qt::ChatBlock block;
  block.runs = runs;
  ref.item->blocks.push_back(std::move(block));
  ContentChanged(ref, row);
}

int ChatList::InsertObject(int row, const ChatObject& object) {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return 0;
  qt::ChatBlock block;
  block.isObject = true;
  block.object = object;
  ref.item->blocks.push_back(std::move(block));
  ContentChanged(ref, row);
  return static_cast<int>(ref.item->blocks.size());
}

bool ChatList::UpdateObject(int row, int objectId, const ChatObject& object) {
  ItemRef ref = ItemAt(list_, row);
  if (!ref || objectId < 1 || objectId > static_cast<int>(ref.item->blocks.size())) return false;
  qt::ChatBlock& block = ref.item->blocks[static_cast<size_t>(objectId - 1)];
  if (!block.isObject) return false;
  if (block.object == object) return true;
  block.object = object;
  ContentChanged(ref, row);
  return true;
}

int ChatList::ObjectCount(int row) const {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return 0;
  int count = 0;
  for (const qt::ChatBlock& block : ref.item->blocks) count += block.isObject ? 1 : 0;
  return count;
}

ChatObject ChatList::Object(int row, int objectId) const {
  ItemRef ref = ItemAt(list_, row);
  if (!ref || objectId < 1 || objectId > static_cast<int>(ref.item->blocks.size())) return {};
  return ref.item->blocks[static_cast<size_t>(objectId - 1)].object;
}

void ChatList::FitToContent(int row, const ChatFit& fit) {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return;
  if (ref.item->fit == fit) return;  // estimated or measured already
  ref.item->fit = fit;
  ref.item->measured = false;
  ref.view->items()->Changed(row, ref.view->Fit(*ref.item, false));
}

Point ChatList::ContentSize(int row) const {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return {};
  if (ref.view->Fit(*ref.item, true)) ref.view->items()->Changed(row, true);
  QSize size = ref.view->ContentSize(*ref.item);
  return Point{size.width(), size.height()};
}

int ChatList::ItemHeight(int row) const {
  ItemRef ref = ItemAt(list_, row);
  return ref ? ref.item->height : 0;
}

WString ChatList::PlainText(int row) const {
  ItemRef ref = ItemAt(list_, row);
  if (!ref) return WString();
  return qt::ItemText(*ref.item).toStdU16String();
}

}  // namespace ui
