#pragma once
// The main window's controls that several panes use, looked up once when the
// skin is built. Each may be absent; a missing one makes its handlers do
// nothing.

#include "ui/kit/control.h"
#include "ui/kit/window_impl_base.h"

namespace ui::main {

struct MainControls {
  Control searchEdit;         // IMWnd_searchEdit
  Control friendsList;        // FriendsList
  Control conversationList;   // ConversationList
  Control recentConverBtn;    // RecentConverBtn
  Control friendsListBtn;     // FriendsListBtn
  Control friendRequestList;  // Friend_Request_List
  Control sessionName;        // IMWnd_SessionName
  Control hisRecordList;      // HisRecordList
  Control composer;           // ChatWindow_SendrichEdit
  Control tabs;               // left pages
  Control chatModule;         // IMWnd_ChatModule, right pages

  void LookUp(const WindowImplBase& window) {
    searchEdit = window.FindControl("IMWnd_searchEdit");
    friendsList = window.FindControl("FriendsList");
    conversationList = window.FindControl("ConversationList");
    recentConverBtn = window.FindControl("RecentConverBtn");
    friendsListBtn = window.FindControl("FriendsListBtn");
    friendRequestList = window.FindControl("Friend_Request_List");
    sessionName = window.FindControl("IMWnd_SessionName");
    hisRecordList = window.FindControl("HisRecordList");
    composer = window.FindControl("ChatWindow_SendrichEdit");
    tabs = window.FindControl("tabs");
    chatModule = window.FindControl("IMWnd_ChatModule");
  }
};

// Left-hand pages of "tabs".
inline constexpr int kConversationsPage = 0;
inline constexpr int kFriendsPage = 1;
inline constexpr int kNoConversationsPage = 2;
inline constexpr int kNetworkDownPage = 3;
// Right-hand pages of "IMWnd_ChatModule".
inline constexpr int kChatPage = 0;
inline constexpr int kRequestsPage = 1;
inline constexpr int kEmptyChatPage = 4;

}  // namespace ui::main
