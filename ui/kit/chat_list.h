#pragma once
// The message list ("ImChatList" in skins): items of differing heights built
// from several templates, each with a rich edit holding text, inline images
// (emoticons) and embedded objects (pictures, file icons) that are inserted
// once and then updated in place. Items are data: only those on screen are
// drawn (by one stamp per template), so long histories cost records, not
// widgets. An item that follows its content's size has an estimated height
// until it comes into view (or its size is asked for): only then is its
// content laid out, and the view keeps its place while estimates are
// corrected.
//
// An item is found by its item id, which its List_Item_RichEdit carries as
// user data (double-clicks and notifications name that control).

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/strings.h"
#include "ui/kit/control.h"
#include "ui/kit/list_batch.h"

namespace ui {

// A text, or an inline image (when `image` is set; `text` is then what a copy
// of the item gives for it).
struct ChatRun {
  WString text;
  WString image;
};

// An object embedded in the rich edit: an image (a path relative to the
// skin folder, or absolute) scaled to fit `maxSide` pixels (0: as it is),
// caption lines beside it, a small state image after them and a progress bar
// (0..100; -1: none).
struct ChatObject {
  WString image;
  int maxSide = 0;
  WString caption;
  WString stateImage;
  int progress = -1;
  bool operator==(const ChatObject&) const = default;
};

// How an item follows its content: the item is the content's height plus
// `itemExtra` high; the rich edit is the content's height plus `editExtra`,
// and with a bubble (MsgContainer) the bubble is that high too and the rich
// edit as wide as the content.
struct ChatFit {
  int itemExtra = 0;
  int editExtra = 0;
  bool bubble = false;
  bool operator==(const ChatFit&) const = default;
};

class ChatList {
 public:
  ChatList() = default;
  // Empty (false) when `list` is not a chat list.
  explicit ChatList(const Control& list);

  explicit operator bool() const;
  const Control& control() const { return list_; }

  int Count() const;
  // Adds an item made from the template skin at `index` (-1: at the end) and
  // returns its index; -1 when the template cannot be loaded.
  int Add(std::string_view skinFile, uint64_t itemId, int index = -1);
  // The row of the item with this id, or -1.
  int Find(uint64_t itemId) const;
  uint64_t ItemId(int row) const;
  // The template file the item was made from.
  std::string TemplateOf(int row) const;
  void RemoveAll();

  // One attribute of one named template control of an item.
  void Set(int row, std::string_view control, std::string_view attribute, const WString& value);
  WString Get(int row, std::string_view control, std::string_view attribute) const;

  // The rich edit's content.
  void AppendText(int row, const std::vector<ChatRun>& runs);
  // Returns the new object's id (> 0), 0 when there is no such row.
  int InsertObject(int row, const ChatObject& object);
  bool UpdateObject(int row, int objectId, const ChatObject& object);
  int ObjectCount(int row) const;
  ChatObject Object(int row, int objectId) const;
  // The item follows its content from now on (see ChatFit): estimated at
  // once, laid out when it comes into view.
  void FitToContent(int row, const ChatFit& fit);
  // The content laid out at the widest the item allows: its width and
  // height. An item that follows its content takes its real size now.
  Point ContentSize(int row) const;
  int ItemHeight(int row) const;
  // What a copy of the item gives.
  WString PlainText(int row) const;

  // Changes inside a batch reach the screen once, when the last batch ends.
  using Batch = ListBatch;

 private:
  Control list_;
};

}  // namespace ui
