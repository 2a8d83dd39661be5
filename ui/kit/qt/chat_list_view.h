#pragma once
// The list behind ChatList ("ImChatList" in skins): items are data, each
// drawn by the stamp of its template with its rich content laid out by a
// QTextDocument made when the item is first measured or drawn. Items that
// follow their content carry an estimated height until they come near the
// viewport; each layout and scroll then measures those rows for real and
// keeps the view where it was (at the bottom when it was there, else with
// the first row in view in place). Only the documents of rows near the
// viewport are kept.

#include <QAbstractListModel>
#include <QHash>
#include <QListView>
#include <QPointer>
#include <QString>
#include <QTextDocument>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ui/kit/chat_list.h"

class QTextEdit;

namespace ui::qt {

struct ChatBlock {
  bool isObject = false;
  std::vector<ChatRun> runs;  // a text paragraph
  ChatObject object;          // an embedded object
};

// A named template control's attribute that items hold values for. Slots
// are shared by every list (the window thread's).
struct ChatSlot {
  std::string control;
  std::string attribute;
  QString controlName;
};
int ChatSlotOf(std::string_view control, std::string_view attribute);
const ChatSlot& ChatSlotAt(int slot);

struct ChatValue {
  int slot = 0;
  WString value;
};

struct ChatTemplate;

struct ChatItem {
  uint64_t itemId = 0;
  const ChatTemplate* tpl = nullptr;  // loaded: never null
  std::vector<ChatValue> values;
  std::optional<QMargins> inset;  // the rich edit's own inset
  std::vector<ChatBlock> blocks;
  int height = 0;
  std::optional<ChatFit> fit;
  // The height is the content's real one (else an estimate), at this width.
  bool measured = false;
  int measuredWidth = 0;
  // Laid-out content, dropped when the blocks change.
  mutable std::unique_ptr<QTextDocument> doc;

  const WString* Value(int slot) const;
  // Returns false when the value was there already.
  bool SetValue(int slot, const WString& value);
};

// One template: its stamp and the controls the item values go to.
struct ChatTemplate {
  std::string file;
  QPointer<QWidget> stamp;
  QHash<QString, QWidget*> controls;
  QTextEdit* richEdit = nullptr;
  QWidget* container = nullptr;  // MsgContainer, when the template has a bubble
  // The rich edit's font, for estimates: line height and the advance of a
  // wide (CJK) and of an average narrow character.
  int lineHeight = 16;
  int wideAdvance = 13;
  int narrowAdvance = 7;
};

class ChatModel : public QAbstractListModel {
  Q_OBJECT
 public:
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  int Insert(int index, std::unique_ptr<ChatItem> item);
  void Clear();
  int Find(uint64_t itemId) const;
  ChatItem* At(int row) const;
  // The item changed: repainted, and laid out again when its height did.
  void Changed(int row, bool heightChanged);

  void BeginBatch();
  void EndBatch();

 signals:
  void heightsChanged();

 private:
  std::vector<std::unique_ptr<ChatItem>> items_;
  std::unordered_map<uint64_t, int> index_;
  int batch_ = 0;
  bool batchReset_ = false;
  bool batchHeights_ = false;
};

class ChatListView : public QListView {
  Q_OBJECT
 public:
  explicit ChatListView(QWidget* parent = nullptr);

  ChatModel* items() const { return model_; }
  // The template's stamp, loaded once; null when the skin cannot be loaded.
  const ChatTemplate* Template(std::string_view skinFile);
  // The stamp dressed as `row` at `width`; null for a row that does not exist.
  QWidget* BindStamp(int row, int width);
  // The deepest named template control at a point of the viewport.
  QWidget* ControlAt(QPoint viewportPos);
  // The item's content laid out at the widest its template allows.
  QTextDocument* Document(const ChatItem& item);
  QSize ContentSize(const ChatItem& item);
  // The item's height from its fit: estimated, or (`measure`) from its
  // content laid out, which also sizes its rich edit and bubble. Returns
  // whether the height changed.
  bool Fit(ChatItem& item, bool measure);

  void doItemsLayout() override;

 signals:
  void controlClicked(QWidget* control);  // a named control of an item

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  int WrapWidth(const ChatItem& item, const ChatTemplate& tpl) const;
  int EstimateContentHeight(const ChatItem& item, const ChatTemplate& tpl, int wrapWidth) const;
  // Measures the rows near the viewport that carry estimates, lays out again
  // while heights change, keeps the view in place and drops the documents of
  // rows far from it.
  void MeasureRowsInView();
  void KeepDocumentsNearView(int first, int last);
  // The first row whose bottom reaches `y` (viewport coordinates).
  int FirstRowReaching(int y) const;

  ChatModel* model_;
  std::deque<ChatTemplate> templates_;  // items point at theirs
  bool measuring_ = false;
  int documentsMade_ = 0;  // since documents far from the view were last dropped
  // Sizes of the images documents have shown, by the item's image name.
  QHash<QString, QSize> imageSizes_;
};

// The chat list whose viewport `widget` is, or null.
ChatListView* ChatListOfViewport(QWidget* widget);
// What a copy of the item gives: its texts (emoticons as their codes) and
// captions, a line per block.
QString ItemText(const ChatItem& item);
// Resolves an item image (skin-relative or absolute) to a file path.
QString ChatImagePath(const QWidget* list, const WString& image);

}  // namespace ui::qt
