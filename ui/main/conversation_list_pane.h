#pragma once
// The conversation list (ConversationList, rows from "Conver_list_item.xml"):
// rebuilding and filtering it, filling its rows, the per-row updates, the
// unread dots on rows and page buttons, opening, moving to the top and
// deleting a conversation, and the two page buttons.

#include <cstdint>
#include <ctime>
#include <functional>

#include "platform/strings.h"
#include "records/conversation_records.h"
#include "service/panes/conversation_list_source.h"
#include "ui/kit/row_list.h"
#include "ui/kit/window_impl_base.h"
#include "ui/main/conversation_rules.h"
#include "ui/main/main_controls.h"

namespace ui::main {

// The main window's switch between its panes (UpdateCovnID, modes 0..7).
class ChatNavigator {
 public:
  virtual ~ChatNavigator() = default;
  virtual void UpdateCovnID(const WString& convId, uint32_t convType, int mode) = 0;
};

class ConversationListPane {
 public:
  static constexpr int kRowHeight = 80;

  ConversationListPane(WindowImplBase& window, MainControls& controls,
                       service::ConversationListSource& source, ChatNavigator& navigator);

  // After the skin is built: the list's row template.
  void SetUp();
  // Tests pin the clock.
  void SetClock(std::function<std::time_t()> clock) { clock_ = std::move(clock); }

  // 3184.
  void UpdateRencentConvList();
  // 3187, 3192, 3193: one row, by conversation id.
  void UpdateSummary(const WString& convId);
  void UpdatePicture(const WString& convId);
  void UpdateName(const WString& convId, const WString& name);
  // 3191 and 3166: the dot on a page button, unless that page is chosen.
  void MarkConversationsButton();
  void MarkFriendsButton();
  // The dot of one row goes (its messages were read elsewhere).
  void ClearDot(const WString& convId);

  // A click on a row or one of its four controls, "itemclick" on a row.
  void OpenItem(const Control& control);
  // Opening by id (rows, friend and group lists); nothing without a record.
  void OpenConversation(const WString& convId);
  void InsertConverToConverList(const WString& convId, uint32_t convType);
  // Menu command 3168: the open conversation goes.
  void DeleteOpenConversation();
  // The conversation of the host's shared chat, selected and opened; false
  // when no shared chat runs.
  bool OpenSharedSession();

  void ShowConversationsPage();
  void ShowFriendsPage();
  // The left page for the service's state (the friend list rebuilds too).
  void ChooseLeftPage();

  RowList& rows() { return rows_; }

 private:
  // The row's values, made when the row is first drawn or read.
  void FillRow(int row);
  void Fill(int row, const ConversationInfo_Stru& conv,
            const service::ConversationListSource::Picture& picture);
  void FillPicture(int row, const WString& convId, const WString& path);
  void FillSummary(int row, const ConversationInfo_Stru& conv);
  void ShowEmptyChatPage();
  void Post(unsigned msg, WPARAM wParam = 0);

  WindowImplBase& window_;
  MainControls& controls_;
  service::ConversationListSource& source_;
  ChatNavigator& navigator_;
  RowList rows_;
  std::function<std::time_t()> clock_;
};

}  // namespace ui::main
