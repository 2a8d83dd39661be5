// The product's skins and pictures: every control the windows look up is
// there, under its name, of a usable kind; every picture they name exists.
#include <gtest/gtest.h>

#include <utility>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>

#include "tests/ui/test_window.h"
#include "ui/kit/chat_list.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/resources.h"
#include "ui/kit/row_list.h"

namespace ui::test {
namespace {

using platform::W;

constexpr const char* kSkins = "DuiLibRes\\skin\\";

QString ResourceFile(const QString& relative) {
  return QDir(QString::fromStdString(GetResourceRoot())).filePath(relative);
}

QStringList Names(const char* spaced) {
  return QString::fromUtf8(spaced).split(' ', Qt::SkipEmptyParts);
}

TEST(Skins, EveryWindowSkinHasItsControls) {
  const std::pair<const char*, const char*> skins[] = {
      {"IMWnd.xml",
       "IMWnd_searchEdit FriendsList ConversationList RecentConverBtn FriendsListBtn "
       "Friend_Request_List IMWnd_SessionName HisRecordList ChatWindow_SendrichEdit "
       "ChatWindow_richRecv tabs IMWnd_ChatModule IMWnd_Col1 IMWnd_Col2 IMWnd_Col3 IMWnd_Col4 "
       "IMWnd_SharedChatBtn ChatDrawBtn GroupFunctionBtn ChatRecord IMWnd_closebtn IMSetUp "
       "IMWnd_FindChatHistoryBtn IMWnd_UploadFiles IMWnd_UploadImage IMWnd_UploadDrawBtn "
       "IMWnd_EmoticonsBtn IMWnd_AddFriend SendMsgBtn CreateGroupBtn GroupsList "
       "FriendList_Info_Image FriendList_Info_FriendName FriendList_Info_RemarksLabel "
       "FriendList_Info_RemarksEdit FriendList_Info_RemarksBtn PerSonInfo_SendMsg "
       "PerSonInfo_DeleteFriend"},
      {"ChatMessageBox.xml",
       "ChatMessagebox_closebtn ChatMessagebox_Title ChatMessagebox_Msg "
       "ChatMessagebox_ConfirmBtn ChatMessagebox_CancelBtn"},
      {"SetUp.xml",
       "SetUp_DownloadPathLabel SetUp_SelectDownloadPathBtn SetUp_ConfirmBtn SetUp_CancelBtn "
       "SetUp_Closebtn"},
      {"DrawingSelection.xml",
       "DrawingSelection_closebtn DrawingSelection_List DrawingSelection_Tips "
       "DrawingSelection_FromDiskBtn DrawingSelection_SendBtn DrawingSelection_CancelBtn"},
      {"ShareDwg.xml",
       "ShareDwg_closebtn ShareDwg_Title ShareDwg_List ShareDwg_Tips ShareDwg_SendBtn "
       "ShareDwg_SharedChatBtn ShareDwg_CancelBtn"},
  };
  for (const auto& [skin, controls] : skins) {
    RecordingWindow w(skin, kSkins);
    ASSERT_TRUE(w.Create(nullptr, W("x"))) << skin;
    for (const QString& name : Names(controls)) {
      EXPECT_TRUE(w.FindControl(name.toStdString())) << skin << ": " << name.toStdString();
    }
  }
}

TEST(Skins, MainWindowPagesAndListsAreWhereTheWindowExpectsThem) {
  RecordingWindow w("IMWnd.xml", kSkins);
  ASSERT_TRUE(w.Create(nullptr, W("x"), WindowStyle::kTopLevel));
  EXPECT_EQ(w.FindControl("tabs").GetPageCount(), 4);  // conversations, friends, none, network down
  EXPECT_EQ(w.FindControl("IMWnd_ChatModule").GetPageCount(), 5);
  EXPECT_EQ(w.FindControl("IMWnd_ChatModule").GetCurSel(), 4);  // nothing open yet
  EXPECT_TRUE(w.FindControl("HisRecordList").IsInside(w.FindControl("ChatRecord")));
  EXPECT_TRUE(w.FindControl("ConversationList").IsInside(w.FindControl("IMWnd_Col2")));
  EXPECT_TRUE(w.FindControl("IMSetUp").IsInside(w.FindControl("IMWnd_Col1")));
  EXPECT_TRUE(w.FindControl("FriendList_Info_Image").IsInside(w.FindControl("IMWnd_ChatModule")));
  // The long lists are rows drawn from their templates.
  const std::pair<const char*, const char*> rowLists[] = {
      {"ConversationList", "Conver_list_item.xml"},
      {"FriendsList", "friend_list_item.xml"},
      {"Friend_Request_List", "Friend_Request_Item.xml"},
      {"GroupsList", "group_list_item.xml"}};
  for (const auto& [list, skin] : rowLists) {
    RowList rows(w.FindControl(list));
    ASSERT_TRUE(rows) << list;
    EXPECT_TRUE(rows.SetTemplate(skin, 60)) << list;
  }
  // The messages are items of the three chat templates.
  ChatList messages(w.FindControl("HisRecordList"));
  ASSERT_TRUE(messages);
  for (const char* skin : {"SystemReminder.xml", "MyselfChatItem.xml", "FriendChatItem.xml"}) {
    EXPECT_GE(messages.Add(skin, 1), 0) << skin;
  }
}

TEST(Skins, ItemTemplatesHaveTheirNamesAndSubControls) {
  struct Item {
    const char* skin;
    const char* root;
    const char* controls;
  } items[] = {
      {"Conver_list_item.xml", "group_node_item",
       "ConverItem_logo ConverItem_nickname ConverItem_description ConverItem_Display_time"},
      {"friend_list_item.xml", "FriendItemSelected", "friend_list_Image friend_list_nickname"},
      {"group_list_item.xml", "GroupItemSelected",
       "GroupList_Img GroupList_Nickname GroupList_IsMaster"},
      {"Friend_Request_Item.xml", "AddFriendRequire_Item",
       "AddFriendRequire_FriendImage AddFriendRequire_NickName FriendRequire_ConfirmBtn"},
      {"SystemReminder.xml", "SystemReminderItem", "List_Item_RichEdit"},
      {"MyselfChatItem.xml", "MyselfChatItem", "MsgContainer List_Item_RichEdit List_Item_Edit"},
      {"FriendChatItem.xml", "FriendChatItem", "MsgContainer List_Item_RichEdit List_Item_Edit"},
      {"Drawing_list_item.xml", "DrawingItem",
       "DrawingItem_Icon DrawingItem_Name DrawingItem_Detail"},
  };
  RecordingWindow w("IMWnd.xml", kSkins);
  ASSERT_TRUE(w.Create(nullptr, W("x")));
  for (const Item& i : items) {
    Control item = w.CreateFromSkin(i.skin);
    ASSERT_TRUE(item) << i.skin;
    EXPECT_EQ(item.GetName(), i.root) << i.skin;
    for (const QString& name : Names(i.controls)) {
      EXPECT_TRUE(item.FindSubControl(name.toStdString())) << i.skin << ": " << name.toStdString();
    }
  }
  // The bubble holds the rich edit, whose size the message view sets.
  Control mine = w.CreateFromSkin("MyselfChatItem.xml");
  EXPECT_TRUE(
      mine.FindSubControl("List_Item_RichEdit").IsInside(mine.FindSubControl("MsgContainer")));
}

TEST(Skins, UnreadDotIsDrawnWhereTheAttributeSaysAndRemovedByEmptyValues) {
  RecordingWindow w("IMWnd.xml", kSkins);
  ASSERT_TRUE(w.Create(nullptr, W("x")));
  Control logo = w.CreateFromSkin("Conver_list_item.xml").FindSubControl("ConverItem_logo");
  auto redAt = [&](int x, int y) {
    QColor c = qt::WidgetOf(logo)->grab().toImage().pixelColor(x, y);
    return c.red() > 200 && c.green() < 100;
  };
  const char* dot = "file='..\\img\\UnReadDot.png' source='0,0,0,0' dest='36,0,44,8'";
  for (const char* slot : {"normalimage", "hotimage", "pushedimage"}) {
    ASSERT_TRUE(logo.SetAttribute(slot, dot)) << slot;
  }
  EXPECT_TRUE(redAt(40, 4));
  EXPECT_FALSE(redAt(20, 30));  // only the corner
  for (const char* slot : {"normalimage", "hotimage", "pushedimage"}) logo.SetAttribute(slot, "");
  EXPECT_FALSE(redAt(40, 4));
  EXPECT_FALSE(logo.SetAttribute("normalimage", "file='..\\img\\NoSuchPicture.png'"));
}

TEST(Skins, EveryPictureTheSkinsNameExists) {
  QDir skinDir(ResourceFile("DuiLibRes/skin"));
  QRegularExpression picture(QStringLiteral("\\.\\./img/[A-Za-z0-9_]+\\.(png|gif)"));
  int seen = 0;
  for (const QString& file : skinDir.entryList({"*.xml"})) {
    QFile f(skinDir.filePath(file));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << file.toStdString();
    QString text = QString::fromUtf8(f.readAll());
    for (auto it = picture.globalMatch(text); it.hasNext();) {
      QString path = skinDir.filePath(it.next().captured(0));
      EXPECT_FALSE(QImage(path).isNull()) << file.toStdString() << ": " << path.toStdString();
      ++seen;
    }
  }
  EXPECT_GT(seen, 10);
}

}  // namespace
}  // namespace ui::test
