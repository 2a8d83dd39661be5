#include "ui/main/conversation_list_pane.h"

#include "platform/trace.h"
#include "service/current_conversation.h"
#include "service/posting.h"
#include "ui/main/conversation_rules.h"
#include "ui/main/unread_dots.h"

namespace ui::main {
namespace {

constexpr std::string_view kLogo = "ConverItem_logo";
constexpr std::string_view kNickname = "ConverItem_nickname";
constexpr std::string_view kDescription = "ConverItem_description";
constexpr std::string_view kTime = "ConverItem_Display_time";

}  // namespace

ConversationListPane::ConversationListPane(WindowImplBase& window, MainControls& controls,
                                           service::ConversationListSource& source,
                                           ChatNavigator& navigator)
    : window_(window), controls_(controls), source_(source), navigator_(navigator), clock_([] {
        return std::time(nullptr);
      }) {}

void ConversationListPane::SetUp() {
  rows_ = RowList(controls_.conversationList);
  if (!rows_.SetTemplate("Conver_list_item.xml", kRowHeight)) {
    platform::Trace("ConversationListPane: the row template Conver_list_item.xml is missing");
  }
  rows_.SetNameControl(kNickname);
  rows_.SetFiller([this](int row) { FillRow(row); });
}

void ConversationListPane::Post(unsigned msg, WPARAM wParam) {
  service::Post(window_.GetHWND(), msg, wParam);
}

void ConversationListPane::ChooseLeftPage() {
  if (!source_.IsSignedIn()) return;
  if (source_.HasConversations()) {
    if (controls_.recentConverBtn.IsSelected() &&
        controls_.tabs.GetCurSel() == kNoConversationsPage) {
      controls_.tabs.SelectItem(kConversationsPage);
    }
  } else if (controls_.recentConverBtn.IsSelected()) {
    controls_.tabs.SelectItem(kNoConversationsPage);
  }
  if (controls_.friendsListBtn.IsSelected()) controls_.tabs.SelectItem(kFriendsPage);
}

void ConversationListPane::UpdateRencentConvList() {
  if (!controls_.tabs || !controls_.searchEdit || !rows_) return;
  ChooseLeftPage();
  WString search = controls_.searchEdit.GetText();
  {
    RowList::Batch batch(rows_);
    rows_.RemoveAll();
    for (const RecentConversationKey& key : source_.RecentKeys()) {
      // Names are looked up to filter only; rows make their values when drawn.
      if (!search.empty() &&
          !MatchesSearch(source_.ConversationPicture(key.conv_type, key.conv_id).name, search)) {
        continue;
      }
      rows_.Add(key.conv_id);
    }
  }
  WString open = service::CurrentConvId();
  int openRow = rows_.Find(open);
  if (openRow >= 0) source_.SetRead(open);  // listed and open: nothing unread stays
  rows_.Select(openRow);                    // the open one stands out
}

void ConversationListPane::FillRow(int row) {
  WString convId = rows_.UserData(row);
  std::optional<ConversationInfo_Stru> conv = source_.FindConversation(convId);
  if (!conv) return;  // gone since the rebuild; the next rebuild drops the row
  Fill(row, *conv, source_.ConversationPicture(conv->conv_type, convId));
}

void ConversationListPane::Fill(int row, const ConversationInfo_Stru& conv,
                                const service::ConversationListSource::Picture& picture) {
  FillPicture(row, conv.conv_id, picture.path);
  rows_.SetText(row, kNickname, picture.name);
  FillSummary(row, conv);
}

void ConversationListPane::FillPicture(int row, const WString& convId, const WString& path) {
  rows_.Set(row, kLogo, "bkimage", path);
  bool open = service::IsCurrentConversation(convId);
  if (open) source_.SetRead(convId);
  SetRowDot(rows_, row, kLogo, kConversationDot, !open && source_.IsUnread(convId));
}

void ConversationListPane::FillSummary(int row, const ConversationInfo_Stru& conv) {
  for (std::string_view control : {kNickname, kDescription, kTime}) {
    rows_.Set(row, control, "userdata", conv.conv_id);
  }
  rows_.SetText(row, kDescription, ConversationPreview(conv.last_msg));
  rows_.SetText(row, kTime, ConversationTimeText(conv.active_time, clock_()));
}

void ConversationListPane::UpdateSummary(const WString& convId) {
  int row = rows_.Find(convId);
  std::optional<ConversationInfo_Stru> conv = source_.FindConversation(convId);
  if (row >= 0 && conv) FillSummary(row, *conv);
}

void ConversationListPane::UpdatePicture(const WString& convId) {
  int row = rows_.Find(convId);
  std::optional<ConversationInfo_Stru> conv = source_.FindConversation(convId);
  if (row < 0 || !conv) return;
  FillPicture(row, convId, source_.ConversationPicture(conv->conv_type, convId).path);
}

void ConversationListPane::UpdateName(const WString& convId, const WString& name) {
  int row = rows_.Find(convId);
  if (row >= 0) rows_.SetText(row, kNickname, name);
}

void ConversationListPane::MarkConversationsButton() {
  SetDot(controls_.recentConverBtn, kPageButtonDot, !controls_.recentConverBtn.IsSelected());
}

void ConversationListPane::MarkFriendsButton() {
  SetDot(controls_.friendsListBtn, kPageButtonDot, !controls_.friendsListBtn.IsSelected());
}

void ConversationListPane::ClearDot(const WString& convId) {
  int row = rows_.Find(convId);
  if (row >= 0) SetRowDot(rows_, row, kLogo, kConversationDot, false);
  source_.SetRead(convId);
}

void ConversationListPane::OpenItem(const Control& control) {
  int row = rows_.RowOf(control);
  if (row >= 0) OpenConversation(rows_.UserData(row));
}

void ConversationListPane::OpenConversation(const WString& convId) {
  std::optional<ConversationInfo_Stru> conv = source_.FindConversation(convId);
  if (!conv) return;
  service::SetCurrentPeerId(convId);
  service::SetCurrentConversation(conv->conv_id, conv->conv_type);
  if (controls_.sessionName) {
    controls_.sessionName.SetText(source_.ConversationName(conv->conv_type, convId));
  }
  source_.SetRead(convId);
  if (conv->unread_num != 0 && conv->conv_type == 2) source_.ReadGroup(convId, conv->unread_num);
  navigator_.UpdateCovnID(convId, conv->conv_type, 0);
}

void ConversationListPane::InsertConverToConverList(const WString& convId, uint32_t convType) {
  controls_.tabs.SelectItem(kConversationsPage);
  controls_.chatModule.SelectItem(kChatPage);
  SetPageButtonImages(controls_.recentConverBtn, controls_.friendsListBtn, true);
  if (controls_.sessionName) {
    controls_.sessionName.SetText(source_.ConversationName(convType, convId));
  }
  service::SetCurrentConversation(convId, convType);
  source_.MoveToFront(convId, convType, static_cast<uint64_t>(clock_()));
  service::SetCurrentPeerId(convId);
  Post(platform::msg::kRecentConversationsChanged);
}

void ConversationListPane::DeleteOpenConversation() {
  WString peer = service::CurrentPeerId();
  if (!peer.empty() && source_.FindConversation(peer)) {
    service::SetCurrentPeerId(WString());
    source_.DeleteConversation(peer);
  }
  ShowEmptyChatPage();
}

bool ConversationListPane::OpenSharedSession() {
  std::optional<WString> convId = source_.SharedSessionConversation();
  if (!convId) return false;
  int row = rows_.Find(*convId);
  if (row >= 0) rows_.Select(row);
  OpenConversation(*convId);
  return true;
}

void ConversationListPane::ShowEmptyChatPage() {
  controls_.chatModule.SelectItem(kEmptyChatPage);
  // No conversation's name above "选择一个会话开始聊天".
  controls_.sessionName.SetText(WString());
}

void ConversationListPane::ShowConversationsPage() {
  controls_.searchEdit.SetText(WString());
  source_.RefreshConversations();
  SetDot(controls_.recentConverBtn, kPageButtonDot, false);
  SetPageButtonImages(controls_.recentConverBtn, controls_.friendsListBtn, true);
  controls_.tabs.SelectItem(source_.IsNetworkDown() ? kNetworkDownPage : kConversationsPage);
  ShowEmptyChatPage();
  Post(platform::msg::kRecentConversationsChanged);
}

void ConversationListPane::ShowFriendsPage() {
  controls_.searchEdit.SetText(WString());
  source_.RefreshConversations();
  SetPageButtonImages(controls_.recentConverBtn, controls_.friendsListBtn, false);
  Post(platform::msg::kFriendListChanged);
  SetDot(controls_.friendsListBtn, kPageButtonDot, false);
  controls_.tabs.SelectItem(source_.IsNetworkDown() ? kNetworkDownPage : kFriendsPage);
  ShowEmptyChatPage();
}

}  // namespace ui::main
