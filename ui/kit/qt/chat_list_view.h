#pragma once
// The list behind ChatList ("ImChatList" in skins): items are data, each
// drawn by the stamp of its template with its rich content laid out by a
// QTextDocument kept per item (made when first needed).

#include <QAbstractListModel>
#include <QHash>
#include <QListView>
#include <QPointer>
#include <QString>
#include <QTextDocument>

#include <memory>
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

struct ChatItem {
  uint32_t itemId = 0;
  QString skinFile;
  QHash<QString, QString> values;  // key: control + '\n' + attribute
  std::vector<ChatBlock> blocks;
  int height = 0;
  // Laid-out content, dropped when the blocks change.
  mutable std::unique_ptr<QTextDocument> doc;
};

// One template: its stamp and the controls the item values go to.
struct ChatTemplate {
  QPointer<QWidget> stamp;
  QHash<QString, QWidget*> controls;
  QTextEdit* richEdit = nullptr;
  QWidget* container = nullptr;  // MsgContainer, when the template has a bubble
};

class ChatModel : public QAbstractListModel {
  Q_OBJECT
 public:
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  int Insert(int index, std::unique_ptr<ChatItem> item);
  void Clear();
  int Find(uint32_t itemId) const;
  ChatItem* At(int row) const;
  // The item changed: repainted, and laid out again when its height did.
  void Changed(int row, bool heightChanged);

  void BeginBatch();
  void EndBatch();

 signals:
  void heightsChanged();

 private:
  std::vector<std::unique_ptr<ChatItem>> items_;
  std::unordered_map<uint32_t, int> index_;
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
  const ChatTemplate* Template(const QString& skinFile);
  // The stamp dressed as `row` at `width`; null for a row that does not exist.
  QWidget* BindStamp(int row, int width);
  // The deepest named template control at a point of the viewport.
  QWidget* ControlAt(QPoint viewportPos);
  // The item's content laid out at the widest its template allows.
  QTextDocument* Document(const ChatItem& item);
  QSize ContentSize(const ChatItem& item);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int WrapWidth(const ChatItem& item, const ChatTemplate& tpl) const;

  ChatModel* model_;
  QHash<QString, ChatTemplate> templates_;
};

// The chat list whose viewport `widget` is, or null.
ChatListView* ChatListOfViewport(QWidget* widget);
// What a copy of the item gives: its texts (emoticons as their codes) and
// captions, a line per block.
QString ItemText(const ChatItem& item);
// Resolves an item image (skin-relative or absolute) to a file path.
QString ChatImagePath(const QWidget* list, const WString& image);

}  // namespace ui::qt
