#pragma once
// The message view (HisRecordList): the open conversation's messages as
// items of three templates, each element rendered its own way and inserted
// once, then updated in place; read reports, the send state, downloads and
// their progress, paging older history in from the store, and opening an
// attachment on a double-click.

#include <cstdint>
#include <ctime>
#include <functional>

#include "platform/strings.h"
#include "service/panes/message_view_source.h"
#include "ui/kit/chat_list.h"
#include "ui/kit/desktop.h"
#include "ui/kit/window_impl_base.h"
#include "ui/main/main_controls.h"
#include "ui/main/message_map.h"
#include "ui/main/pane_routes.h"

namespace ui::main {

class MessageView : public MessageViewRoutes {
 public:
  // Messages read from the store when a conversation is first shown, and per
  // older page.
  static constexpr int kFirstPage = 20;
  static constexpr int kOlderPage = 100;
  // Largest side of a picture in an item.
  static constexpr int kPictureSide = 200;

  using BoxShower = std::function<void(const WString& title, const WString& text)>;

  MessageView(WindowImplBase& window, MainControls& controls, service::MessageViewSource& source,
              Desktop& desktop);

  // Tests pin the clock and catch the boxes.
  void SetClock(std::function<std::time_t()> clock) { clock_ = std::move(clock); }
  void SetBoxShower(BoxShower shower) { showBox_ = std::move(shower); }

  void ShowMsgs() override;
  void ReloadCurrentConversation() override;
  void OnTransferChanged(WPARAM requestKey, LPARAM lParam) override;
  void LoadFromStore(WPARAM more) override;
  bool FetchOlderPage() override;
  void OpenAttachment(const Control& richEdit) override;
  void Clear() override;

  MessageMap& messages() { return messages_; }
  ChatList& list() { return list_; }

 private:
  void Prepare(const WString& convId);
  // Merges the conversation's stored messages, `more` beyond those held;
  // returns how many were new.
  size_t MergeStored(const WString& convId, int more);
  int CreateItem(ShownMessage& shown, const ElemStru& elem, int at);
  void AddSeparator(std::time_t time, int at);
  void Render(int row, ShownMessage& shown, size_t index);
  void RenderText(int row, ShownMessage& shown, size_t index);
  void RenderPicture(int row, ShownMessage& shown, size_t index);
  void RenderVoice(int row, ShownMessage& shown, size_t index);
  void RenderFile(int row, ShownMessage& shown, size_t index);
  void RenderDrawing(int row, ShownMessage& shown, size_t index);
  void RenderVideo(int row, ShownMessage& shown, size_t index);
  void RenderGeneric(int row, ShownMessage& shown, size_t index);
  // Inserts the element's object the first time, updates it afterwards.
  void PutObject(int row, ShownElem& view, const ChatObject& object);
  void StartDownload(ShownMessage& shown, ShownElem& view, const std::string& param,
                     const WString& path);
  void FollowTransfer(ShownMessage& shown);
  bool AtBottom() const;
  // Items were resized: back to the bottom when the view was there.
  void FollowBottom(bool wasAtBottom);
  WString SenderId(const MessageStru& message) const;
  WString SenderName(const MessageStru& message) const;
  WString Header(const ShownMessage& shown) const;
  class ViewPrompt;
  void OpenDrawing(ShownMessage& shown);
  void ShowBox(const WString& title, const WString& text);
  void Post(unsigned msg, WPARAM wParam);
  std::time_t Now() const;

  WindowImplBase& window_;
  MainControls& controls_;
  service::MessageViewSource& source_;
  Desktop& desktop_;
  ChatList list_;
  MessageMap messages_;
  WString shownConversation_;
  std::function<std::time_t()> clock_;
  BoxShower showBox_;
};

}  // namespace ui::main
