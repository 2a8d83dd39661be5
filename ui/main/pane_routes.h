#pragma once
// The routes from CIMWnd's dispatch to the panes and dialogs that plug into
// it. CIMWnd owns one object of each kind and calls it from a one-line case;
// a pane replaces the default object with its own subclass in
// CIMWnd::MakePanes. The defaults do only what the window can do without the
// pane (and say so).
//
// Payloads are adopted by CIMWnd before a route runs: routes get references
// and never free anything.

#include <cstdint>
#include <vector>

#include "platform/strings.h"
#include "records/message_records.h"
#include "service/service_records.h"
#include "ui/kit/control.h"
#include "ui/kit/window_impl_base.h"

namespace ui::main {

// The message view (HisRecordList).
class MessageViewRoutes {
 public:
  virtual ~MessageViewRoutes() = default;
  // 3025 (CIMWnd runs the modes): rebuild the view from the messages held
  // (ShowMsgs), and reload the open conversation's messages from the store.
  virtual void ShowMsgs() {}
  virtual void ReloadCurrentConversation() {}
  // 3208: a message of a conversation changed (heap message adopted here).
  virtual void OnMessageChanged(const MessageStru& /*message*/) {}
  // 3164: an attachment finished downloading or uploading.
  virtual void OnTransferChanged(WPARAM /*requestKey*/, LPARAM /*lParam*/) {}
  // 3190: load the open conversation from the store, `more` beyond the cache.
  virtual void LoadFromStore(WPARAM /*more*/) {}
  // True while a rebuild after an older page must not jump to the bottom.
  void SetLoadingOlder(bool loading) { loadingOlder_ = loading; }
  bool IsLoadingOlder() const { return loadingOlder_; }
  // Wheel paging passed its one-second gate: fetch a page; true when a page
  // was fetched (the fetch time is then remembered).
  virtual bool FetchOlderPage() { return false; }
  virtual bool FetchNewerPage() { return false; }
  // A double-click on a message's List_Item_RichEdit.
  virtual void OpenAttachment(const Control& /*richEdit*/) {}
  // The window forgets the signed-in user's data: no message of theirs may
  // reach the next user's view.
  virtual void Clear() {}

 private:
  bool loadingOlder_ = false;
};

// The composer (ChatWindow_SendrichEdit) and its tool buttons.
class ComposerRoutes {
 public:
  explicit ComposerRoutes(const Control& composer) : composer_(composer) {}
  virtual ~ComposerRoutes() = default;
  // 3205 and opening a conversation.
  virtual void Clear() { composer_.SetText(WString()); }
  // Enter in the composer and SendMsgBtn.
  virtual void Send() {}
  virtual void SendFiles() {}
  virtual void SendPictures() {}
  virtual void OpenEmoticons() {}
  // 3153: the result is the message's result.
  virtual LRESULT InsertEmoticon(WPARAM /*wParam*/, LPARAM /*lParam*/) { return 0; }
  // Ctrl+V with the composer focused: the window swallows the key after
  // this; the default pastes the clipboard's text.
  virtual void PasteKey() { composer_.PasteText(); }
  // 3158 over the composer, 3156.
  virtual void Paste() { composer_.PasteText(); }
  virtual void Cut() { composer_.Cut(); }
  // Files dropped on the window (kWmDropFiles); the default takes none.
  virtual void DropFiles(const std::vector<WString>& /*paths*/) {}

 protected:
  Control composer_;
};

// The friend, group and request lists and the friend card.
class FriendListRoutes {
 public:
  virtual ~FriendListRoutes() = default;
  virtual void UpdateFriendList() {}                                        // 3183
  virtual void UpdateGroupList() {}                                         // 3185
  virtual void DisplayFriendRequireList() {}                                // 3186
  virtual void RefreshNewFriendEntry() {}                                   // 3206
  virtual void DeleteShownFriend() {}                                       // 3203
  virtual void CommitRemarkEdit() {}                                        // 3204
  virtual void OnRequestAnswered(const FriendRequestResult& /*answer*/) {}  // 3182
  virtual void RefreshRequests() {}                           // 3166, before the button's dot
  virtual void RefetchProfiles() {}                           // 3167
  virtual void OnRemarkChanged(const WString& /*remark*/) {}  // 3149
  virtual void OnKillFocus(const Control& /*control*/) {}
  // Enter in an edit of the friends page.
  virtual void OnReturn(const Control& /*control*/) {}
  // 3192: the picture of a user or group has arrived.
  virtual void UpdatePicture(const WString& /*id*/) {}
  // The window forgets the signed-in user's data.
  virtual void Clear() {}
  // The empty page shows "nothing open" again (a page button was clicked).
  virtual void HideCard() {}
  // Item selections and the clicks that mean the same.
  virtual void SelectFriend(const Control& /*item*/) {}
  virtual void SelectGroup(const Control& /*item*/) {}
  virtual void ShowRequests() {}
  virtual void ShowGroups() {}
  // friend_list_Image: the card of the user in the control's user data.
  virtual void ShowUserCard(const Control& /*image*/) {}
  // The friend a control of the friend list belongs to (empty: none).
  virtual WString FriendIdOf(const Control& /*control*/) const { return WString(); }
  virtual void AcceptRequest(const Control& /*confirmButton*/) {}
  virtual void OpenChatWithShownFriend() {}  // PerSonInfo_SendMsg
  virtual void OpenChatWithMenuFriend() {}   // menu 3170
  virtual void DeleteMenuFriend() {}         // menu 3171
  virtual void OpenGroupChat() {}            // menu 3174
  // A right-click on a friend or group item, before its menu.
  virtual void RememberMenuTarget(const Control& /*item*/) {}
  // A double-click: true when it was on a friend item (which it then opened).
  virtual bool OnDoubleClick(const Control& /*control*/) { return false; }
};

// Dialogs and the drawing upload and shared-chat controller.
class DialogRoutes {
 public:
  virtual ~DialogRoutes() = default;
  virtual void OpenSettings(const Control& /*button*/) {}         // IMSetUp
  virtual void AddFriendByAccount(const WString& /*account*/) {}  // IMWnd_AddFriend
  virtual void OpenAddMenu(const Control& /*button*/) {}          // CreateGroupBtn
  virtual void OpenAddFriend() {}                                 // 3162, 3172
  virtual void OpenCreateGroup() {}                               // 3163, 3173
  virtual void OpenGroupFunction(const Control& /*button*/) {}    // GroupFunctionBtn
  virtual void OpenFriendCard(const WString& /*id*/) {}           // friend_list_Image
  virtual void OpenUserInfo(const WString& /*id*/) {}             // a person in a chat
  virtual void ManageSharedDrawings() {}                          // ChatDrawBtn
  virtual void SendDrawing() {}                                   // IMWnd_UploadDrawBtn
  virtual void StartSharedChat() {}                               // IMWnd_SharedChatBtn
  // 3208: a member entered or left a shared chat (the message is the window's).
  virtual void OnSharedChatNotice(const MessageStru& /*message*/) {}
};

}  // namespace ui::main
