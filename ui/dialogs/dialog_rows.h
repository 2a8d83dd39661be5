#pragma once
// The dialog table: every dialog of the module with its class name, skin,
// window name, final handling and focus-loss handling. Dialogs take their
// row from here (ui/dialogs/dialog_frame.h), so the table is the one place
// these facts are written down.

#include "ui/dialogs/dialog_frame.h"

namespace ui::dialogs {

using enum FinalMessage;
using enum KillFocus;

// The add menu opened at the main window's CreateGroupBtn. The class name
// keeps its trailing blank.
inline constexpr DialogRow kAddFriendMenu{"CAddFriendMenu ", "AddFriendMenu.xml", u"CEditMenu",
                                          kSelfDelete, kCloseThenBase};
inline constexpr DialogRow kAddFriendWnd{"AddFriendWnd", "AddFriendWnd.xml", u"", kKeep, kBase};
inline constexpr DialogRow kAddGrouMember{"AddGrouMember", "AddGroupMember.xml",
                                          u"AddGrouMemberWindow", kKeep, kIgnore};
inline constexpr DialogRow kAddGrouMemPersonInfo{
    "CAddGrouMem_PersonInfo", "AddGrouMem_PersonInfo.xml", u"CAddGrouMem_PersonInfo", kKeep, kBase};
inline constexpr DialogRow kChatMessageBox{"CChatMessageBox", "ChatMessageBox.xml",
                                           u"CChatMessageBox", kKeep, kIgnore};
inline constexpr DialogRow kCreateGroup{"CreateGroupWindow", "CreateGroup.xml", u"CreateGroup",
                                        kKeep, kIgnore};
inline constexpr DialogRow kDeleteGroupMember{"DeleteGroupMemberWindow", "DeleteGroupMember.xml",
                                              u"DeleteGroupMember", kKeep, kIgnore};
inline constexpr DialogRow kDisbandGroup{"DisbandGroupWindow", "DisbandGroup.xml", u"", kSelfDelete,
                                         kIgnore};
inline constexpr DialogRow kDisPlayUserInfo{"CDisPlayUserInfoWindow", "DisPlayUserInfo.xml",
                                            u"CDisPlayUserInfo", kKeep, kIgnore};
inline constexpr DialogRow kDrawingSelection{"CDrawingSelectionWindow", "DrawingSelection.xml",
                                             u"CDrawingSelection", kKeep, kBase};
inline constexpr DialogRow kFormGroupChat{"CFormGroupChat", "FormGroupChat.xml", u"CFormGroupChat",
                                          kKeep, kBase};
inline constexpr DialogRow kFriendListUserInfo{
    "CFriendList_UserInfoWindow", "FriendList_PersonInfo.xml", u"", kSelfDelete, kClose};
inline constexpr DialogRow kGroupFunction{"GroupFunction", "GroupFunction.xml", u"GroupFunction",
                                          kKeep, kIgnore};
inline constexpr DialogRow kShareDwg{"ShareDwgWindow", "ShareDwg.xml", u"", kReleaseShareTree,
                                     kBase};
inline constexpr DialogRow kTransferManage{"TransferManageWindow", "TransferGroupManage.xml",
                                           u"TransferManage", kKeep, kIgnore};
inline constexpr DialogRow kWaitWnd{"CWaitWnd", "WaitWnd.xml", u"CWaitWindow", kSelfDelete,
                                    kIgnore};
// The settings dialog opened at the main window's IMSetUp button; it lives
// for its modal loop.
inline constexpr DialogRow kSetUp{"SetUpWindow", "SetUp.xml", u"SetUp", kKeep, kBase};

}  // namespace ui::dialogs
