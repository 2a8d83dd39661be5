#include "apps/demo_script.h"
#include "apps/demo_message_kinds.h"

#include <sqlite3.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMouseEvent>
#include <QTextEdit>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <functional>

#include <json/json.h>

#include "apps/demo_dialogs.h"
#include "apps/demo_drawings.h"
#include "apps/demo_groups.h"
#include "apps/demo_input.h"
#include "host/local/local_host.h"
#include "imsdk/engine_control.h"
#include "platform/strings.h"

namespace demo {

namespace {

void Say(const char* format, const std::string& a = {}, const std::string& b = {}) {
  std::printf(format, a.c_str(), b.c_str());
  std::printf("\n");
  std::fflush(stdout);
}

std::string DbPath(const std::string& dataRoot) {
  return dataRoot + "/" + kUser + "/db/Chat.db";
}

// Opens the conversation with `name` from the conversation list, as the user
// would: row by row until the chat page is titled with the name.
bool OpenConversation(QWidget* window, const QString& name) {
  auto* list = window->findChild<QAbstractItemView*>(QStringLiteral("ConversationList"));
  auto* title = window->findChild<QLabel*>(QStringLiteral("IMWnd_SessionName"));
  if (list == nullptr || list->model() == nullptr || title == nullptr) return false;
  for (int row = 0; row < list->model()->rowCount(); ++row) {
    QRect rect = list->visualRect(list->model()->index(row, 0));
    Click(list->viewport(), QRectF(rect).center());
    if (title->text() == name) return true;
  }
  return false;
}

}  // namespace

// The user opens the chat with 王工, types a text, picks "微笑" in the
// emoticon picker and presses Enter. True when Enter was pressed.
bool TypeAndSend(const std::string& text) {
  QWidget* window = FindChatWindow();
  if (window == nullptr || !PumpUntil([&] { return OpenConversation(window, "王工"); }, 3000)) {
    return false;
  }
  auto* composer = window->findChild<QTextEdit*>("ChatWindow_SendrichEdit");
  auto* emoticons = window->findChild<QAbstractButton*>("IMWnd_EmoticonsBtn");
  if (composer == nullptr || emoticons == nullptr) return false;
  composer->setFocus();
  Type(composer, QString::fromStdString(text));
  emoticons->click();
  QWidget* picker = nullptr;
  PumpUntil(
      [&] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
          if (w->objectName() == QStringLiteral("CFaceSelectDialog") && w->isVisible()) picker = w;
        }
        return picker != nullptr;
      },
      2000);
  auto* smile = picker ? picker->findChild<QAbstractButton*>(QStringLiteral("Smile")) : nullptr;
  if (smile == nullptr) return false;
  smile->click();
  if (!PumpUntil(
          [&] { return composer->toPlainText().contains(QChar::ObjectReplacementCharacter); },
          2000)) {
    return false;
  }
  PressKey(composer, Qt::Key_Return);
  return true;
}

namespace {

// TypeAndSend, true when the message reached the engine with the emoticon as
// its code.
bool SendThroughWindow(const std::string& text) {
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  size_t before = engine.MessageCount(kAnswering, kTIMConv_C2C, kUser);
  return TypeAndSend(text) &&
         PumpUntil(
             [&] {
               return engine.MessageCount(kAnswering, kTIMConv_C2C, kUser) > before &&
                      engine.LastMessageJson(kAnswering, kTIMConv_C2C, kUser).find("[微笑]") !=
                          std::string::npos;
             },
             3000);
}

// True when some text in the message view contains `text`.
bool ViewShows(const std::string& text) {
  QWidget* window = FindChatWindow();
  auto* view =
      window ? window->findChild<QAbstractItemView*>(QStringLiteral("HisRecordList")) : nullptr;
  if (view == nullptr || view->model() == nullptr) return false;
  // The items are data: each reads as its header and its text.
  const QString wanted = QString::fromStdString(text);
  for (int row = 0; row < view->model()->rowCount(); ++row) {
    if (view->model()->index(row, 0).data().toString().contains(wanted)) return true;
  }
  return false;
}

// The user writes in the shared chat on a drawing with 王工: the host hands
// the message to the module, whose service sends it. True when it reached
// the engine.
bool SendInSharedChat(host::local::LocalHost& host, const std::string& text) {
  SharedSessionInfo session;
  session.sessionKey = platform::W(kAnswering);
  session.sessionText = u"demo-shared-drawing";
  host.SetSharedSession(session);
  Json::Value payload;
  payload["msgType"] = 2;  // a message of the shared chat
  payload["data"]["fromUserId"] = kUser;
  payload["data"]["fromUserName"] = "张明";
  payload["data"]["subType"] = 0;
  payload["data"]["type"] = 0;
  payload["data"]["content"] = text;
  payload["data"]["ts"] = Json::UInt64(PayloadTimeNow());
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  size_t before = engine.MessageCount(kAnswering, kTIMConv_C2C, kUser);
  bool sent = host.SendDrawingMsgThroughModule(
      platform::W(Json::writeString(Json::StreamWriterBuilder(), payload)));
  sent = sent &&
         PumpUntil([&] { return engine.MessageCount(kAnswering, kTIMConv_C2C, kUser) > before; },
                   2000);
  host.ClearSharedSession();
  return sent;
}

// The row of a list named `name` for screen readers, or -1.
int RowNamed(QListView* list, const char* name) {
  QAbstractItemModel* model = list->model();
  for (int row = 0; model != nullptr && row < model->rowCount(); ++row) {
    if (model->index(row, 0).data(Qt::AccessibleTextRole).toString() == QString::fromUtf8(name)) {
      return row;
    }
  }
  return -1;
}

// Clicks the row named `name`, `x` pixels in from its right edge.
bool ClickRow(QListView* list, const char* name, int x) {
  int row = RowNamed(list, name);
  if (row < 0) return false;
  QRect rect = list->visualRect(list->model()->index(row, 0));
  Click(list->viewport(), QPointF(rect.right() - x, rect.center().y()));
  return true;
}

// The friends page: the user accepts 赵工's request from the request list,
// then opens 赵工's card from the friend list.
bool VisitFriendsPage(QWidget* window, const std::string& dataRoot,
                      std::vector<std::string>& shots) {
  auto* friendsButton = window->findChild<QAbstractButton*>("FriendsListBtn");
  auto* friends = window->findChild<QListView*>("FriendsList");
  auto* requests = window->findChild<QListView*>("Friend_Request_List");
  if (friendsButton == nullptr || friends == nullptr || requests == nullptr) return false;
  friendsButton->click();
  if (!PumpUntil([&] { return RowNamed(friends, "王工") >= 0; }, 5000) ||
      !ClickRow(friends, "新的朋友", 40) ||
      !PumpUntil([&] { return RowNamed(requests, "赵工") >= 0; }, 5000)) {
    Say("The request list did not show 赵工's request.");
    return false;
  }
  ClickRow(requests, "赵工", 50);  // the button "接受" at the row's right
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  auto isFriend = [&] {
    std::vector<std::string> ids = engine.FriendsOf(kUser);
    return std::find(ids.begin(), ids.end(), kStranger) != ids.end();
  };
  if (!PumpUntil([&] { return isFriend() && RowNamed(friends, "赵工") >= 0; }, 5000)) {
    Say("Accepting 赵工's request did not make him a friend in the list.");
    return false;
  }
  Say("张明 accepted 赵工's friend request on the requests page; 赵工 is in the friend list.");
  if (!SaveShot(window, dataRoot + "/friends-page.png", shots)) return false;
  ClickRow(friends, "赵工", 40);
  QWidget* card = window->findChild<QWidget*>("IMWnd_FriendCard");
  if (card == nullptr || !PumpUntil([&] { return card->isVisible(); }, 2000)) {
    Say("赵工's card did not open.");
    return false;
  }
  Say("赵工's card is open.");
  return SaveShot(window, dataRoot + "/friend-card.png", shots);
}

}  // namespace

QWidget* FindChatWindow() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == QStringLiteral("CIMWnd")) return widget;
  }
  return nullptr;
}

int StoredMessageCount(const std::string& dbPath) {
  sqlite3* db = nullptr;
  int count = -1;
  if (sqlite3_open_v2(dbPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_busy_timeout(db, 1000);
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT count(*) FROM MessageTbl", -1, &stmt, nullptr) ==
            SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW) {
      count = sqlite3_column_int(stmt, 0);
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close_v2(db);
  return count;
}

ScriptResult RunHeadlessScript(im_exports::ModuleLibrary&, host::local::LocalHost& host,
                               const World& world, const std::string& dataRoot) {
  ScriptResult result;
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  const std::string db = DbPath(dataRoot);
  if (!PumpUntil([&] { return StoredMessageCount(db) >= 0; }, 10000)) {
    Say("The module did not open %s.", db);
    return result;
  }
  int stored = StoredMessageCount(db);

  // Peers write while the user is signed in: pushed to the module.
  const std::string hello = "你好，一层平面图我已经上传到群空间了。";
  const std::string stairs = "楼梯间的尺寸请再核对一下。";
  engine.SendText(kAnswering, kTIMConv_C2C, kUser, hello);
  Say("王工 -> 张明: %s", hello);
  engine.SendText(kQuiet, kTIMConv_Group, world.groupId, stairs);
  Say("李工 -> 图纸评审组: %s", stairs);
  bool received = PumpUntil([&] { return StoredMessageCount(db) >= stored + 2; }, 10000);
  Say(received ? "The module received both and saved them in Chat.db."
               : "The module did not save both messages in time.");
  if (!received) return result;
  stored = StoredMessageCount(db);

  // The user answers 王工, who replies at once.
  const std::string answer = "好的，我下午看一下。";
  std::string sent = answer;
  if (SendThroughWindow(answer)) {
    sent += "[微笑]";  // the emoticon goes out as its code
    Say("张明 -> 王工 (typed in the composer with an emoticon, sent with Enter): %s", sent);
  } else if (SendInSharedChat(host, answer)) {
    // The conversation could not be opened from the list: the shared chat
    // on a drawing still goes through the module's service.
    Say("张明 -> 王工 (shared chat on the drawing, sent by the module's service): %s", answer);
  } else {
    Say("The module did not send the user's message.");
    return result;
  }
  bool replied = PumpUntil(
      [&] {
        std::string last = engine.LastMessageJson(kUser, kTIMConv_C2C, kAnswering);
        return last.find(kReplyPrefix) != std::string::npos && StoredMessageCount(db) > stored;
      },
      10000);
  if (!replied) {
    Say("王工's reply did not arrive in time.");
    return result;
  }
  Say("王工 -> 张明: %s%s", kReplyPrefix, sent);
  if (PumpUntil([&] { return ViewShows(kReplyPrefix); }, 3000)) {
    Say("The reply shows in the message view.");
  } else {
    Say("The message view does not show the reply.");
  }
  Say("Pending friend request from 赵工 (10004) waits for the user.");

  QWidget* window = FindChatWindow();
  if (window == nullptr || !OpenConversationNamed(window, QStringLiteral("王工"))) {
    Say("The conversation with 王工 is not in the conversation list.");
    return result;
  }
  PumpUntil([] { return false; }, 300);  // the list redraws with 王工 on top
  Say("Opened the conversation with 王工 from the conversation list.");
  const std::string chatShot = dataRoot + "/chat-window.png";
  if (!SaveShot(window, chatShot, result.screenshots)) return result;

  // The user looks for 赵工 by e-mail address, then opens the settings.
  const std::string menuShot = dataRoot + "/add-menu.png";
  const std::string addFriendShot = dataRoot + "/add-friend-dialog.png";
  const std::string settingsShot = dataRoot + "/settings-dialog.png";
  if (!ShootAddFriend(std::string(kStranger) + "@example.com", menuShot, addFriendShot)) {
    Say("The add-friend dialog did not show a found account.");
    return result;
  }
  Say("张明 searched %s@example.com in the add-friend dialog and found 赵工.", kStranger);
  if (!ShootSettings(settingsShot)) {
    Say("The settings dialog did not open.");
    return result;
  }
  result.screenshots.insert(result.screenshots.end(), {menuShot, addFriendShot, settingsShot});
  if (!VisitFriendsPage(window, dataRoot, result.screenshots)) return result;

  const std::string kinds = ShowEveryMessageKind(dataRoot);
  if (kinds.empty()) return result;
  result.screenshots.push_back(kinds);
  if (!RunDrawingScript(host, world, dataRoot, result.screenshots)) return result;
  if (!ShootGroupWindows(host, dataRoot, result.screenshots)) return result;
  std::printf("Chat.db holds %d messages.\n", StoredMessageCount(db));
  result.ok = true;
  return result;
}

}  // namespace demo
