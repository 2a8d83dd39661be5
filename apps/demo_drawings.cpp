#include "apps/demo_drawings.h"

#include <sqlite3.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QWidget>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>

#include <json/json.h>

#include "apps/demo_dialogs.h"
#include "apps/demo_input.h"
#include "apps/demo_script.h"
#include "host/local/local_host.h"
#include "imsdk/engine_control.h"
#include "platform/strings.h"

namespace demo {
namespace {

constexpr const char* kGroupName = "图纸评审组";
constexpr const char* kDrawingName = "一层平面图.dwg";

void Say(const std::string& text) {
  std::printf("%s\n", text.c_str());
  std::fflush(stdout);
}

// Lets the windows redraw for a while.
void Idle(int ms) {
  QDeadlineTimer deadline(ms);
  while (!deadline.hasExpired()) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool Shoot(QWidget* window, const std::string& path, std::vector<std::string>& shots) {
  QCoreApplication::processEvents();
  if (window == nullptr || !window->grab().save(QString::fromStdString(path))) {
    Say("Could not write the screenshot " + path);
    return false;
  }
  shots.push_back(path);
  return true;
}

// info1..info12 of the conversation's newest custom row of `msgType` as
// stored ('' for a column the row does not use); empty when there is none.
// (Other conversations hold rows of both kinds from earlier steps.)
std::vector<std::string> StoredInfo(const std::string& dbPath, const std::string& convId,
                                    int msgType) {
  sqlite3* db = nullptr;
  std::vector<std::string> info;
  if (sqlite3_open_v2(dbPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_busy_timeout(db, 1000);
    const std::string sql =
        "SELECT info1,info2,info3,info4,info5,info6,info7,info8,info9,info10,info11,info12 "
        "FROM MessageTbl WHERE kTIMElemType=3 AND kTIMMsgConvId='" +
        convId + "' AND info1='" + std::to_string(msgType) + "' ORDER BY id DESC LIMIT 1";
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW) {
      for (int i = 0; i < 12; ++i) {
        const unsigned char* text = sqlite3_column_text(stmt, i);
        info.emplace_back(text != nullptr ? reinterpret_cast<const char*>(text) : "");
      }
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close_v2(db);
  return info;
}

// How many leading info columns the row fills, when none after them is filled.
int FilledInfoColumns(const std::vector<std::string>& info) {
  int filled = 0;
  while (filled < static_cast<int>(info.size()) && !info[filled].empty()) ++filled;
  for (size_t i = filled; i < info.size(); ++i) {
    if (!info[i].empty()) return -1;
  }
  return filled;
}

uint64_t Number(const std::string& text) {
  return text.find_first_not_of("0123456789") == std::string::npos && !text.empty()
             ? std::stoull(text)
             : 0;
}

// The stored drawing row: twelve columns, the space's id of the drawing
// (info2) and the time of the send (info10), which a sent drawing carries.
bool DrawingRowIsComplete(const std::vector<std::string>& info, int32_t spaceDrawingId) {
  if (FilledInfoColumns(info) != 12) return false;
  return spaceDrawingId > 0 && Number(info[1]) == static_cast<uint64_t>(spaceDrawingId) &&
         Number(info[9]) > 0;
}

std::string Payload(int msgType, const Json::Value& data) {
  Json::Value payload;
  payload["msgType"] = msgType;
  payload["data"] = data;
  return Json::writeString(Json::StreamWriterBuilder(), payload);
}

// 王工 comes into the shared chat in the host and says so in the group.
void PeerJoinsSharedChat(host::local::LocalHost& host, const World& world, int32_t groupId) {
  std::vector<int32_t> members = host.SessionMembers(groupId);
  members.push_back(std::stoi(kAnswering));
  host.SetSessionMembers(groupId, members);
  Json::Value data;
  data["fromUserId"] = kAnswering;
  data["fromUserName"] = "王工";
  data["subType"] = 2;  // the host updates the shared drawing's information
  data["type"] = 0;
  data["instruct"] = 2;  // a member entered
  data["content"] = "王工 进入了共享聊图";
  data["ts"] = Json::UInt64(PayloadTimeNow());
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  engine.SendCustom(kAnswering, kTIMConv_Group, world.groupId, Payload(2, data));
  // His change to the drawing, synchronised to everyone in the session.
  Json::Value sync;
  sync["subType"] = 0;
  engine.SendCustom(kAnswering, kTIMConv_Group, world.groupId, Payload(3, sync));
}

}  // namespace

void OpenDrawingInHost(host::local::LocalHost& host, const std::string& dataRoot) {
  const std::filesystem::path folder = std::filesystem::path(dataRoot) / "demo-drawings";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  const std::filesystem::path file = folder / kDrawingName;
  std::ofstream(file, std::ios::binary) << "AC1032\n一层平面图：墙体、楼梯间、标注\n";
  host.SetOpenDrawings({platform::Utf8ToUtf16(file.string())});
}

bool RunDrawingScript(host::local::LocalHost& host, const World& world, const std::string& dataRoot,
                      std::vector<std::string>& shots) {
  QWidget* chat = FindChatWindow();
  const std::string db = dataRoot + "/" + kUser + "/db/Chat.db";
  Click(chat, "RecentConverBtn");  // the conversations page, where a user opens chats
  Idle(200);
  if (chat == nullptr || !OpenConversationNamed(chat, QString::fromUtf8(kGroupName))) {
    Say("The group conversation is not in the conversation list.");
    return false;
  }
  Idle(300);

  // Send the drawing open in the host; the upload takes a moment.
  host.SetUploadDelay(std::chrono::milliseconds(1200));
  bool waitShot = false;
  bool sent = WithModal(
      "CDrawingSelectionWindow", [&] { Click(chat, "IMWnd_UploadDrawBtn"); },
      [&](QWidget* dialog) {
        if (!Shoot(dialog, dataRoot + "/drawing-selection.png", shots) ||
            !Click(dialog, "DrawingSelection_SendBtn")) {
          return false;
        }
        QWidget* wait = nullptr;
        Pump([&] { return (wait = ShownWindow("CWaitWnd")) != nullptr; });
        waitShot = wait != nullptr && Shoot(dialog, dataRoot + "/drawing-upload-wait.png", shots) &&
                   Shoot(wait, dataRoot + "/wait-window.png", shots);
        return true;  // the dialog closes itself once the upload has reported
      },
      false);
  host.SetUploadDelay(std::chrono::milliseconds(0));
  if (!sent || !Pump([&] { return !StoredInfo(db, world.groupId, 1).empty(); })) {
    Say("The drawing was not sent to the group.");
    return false;
  }
  Say("张明 -> 图纸评审组: the drawing " + std::string(kDrawingName) +
      " (uploaded to the group's cloud space" + (waitShot ? ", wait window shown" : "") + ").");
  const std::optional<host::local::SpaceDrawing> inSpace =
      host.SpaceDrawingNamed(platform::Utf8ToUtf16(kDrawingName));
  // The placeholder's row comes first; the sent message completes it.
  std::vector<std::string> drawingRow;
  if (!Pump([&] {
        drawingRow = StoredInfo(db, world.groupId, 1);
        return DrawingRowIsComplete(drawingRow, inSpace ? inSpace->drawingId : -1);
      })) {
    Say("Chat.db: the drawing row is incomplete (" + std::to_string(FilledInfoColumns(drawingRow)) +
        " info columns, fileId '" + drawingRow.at(1) + "', ts '" + drawingRow.at(9) + "').");
    return false;
  }
  Say("Chat.db: the drawing message is stored with 12 info columns (fileId " + drawingRow[1] +
      ", ts " + drawingRow[9] + ").");
  Idle(300);
  if (!Shoot(chat, dataRoot + "/chat-drawing-sent.png", shots)) return false;

  // The group's cloud space.
  if (!WithModal(
          "ShareDwgWindow", [&] { Click(chat, "ChatDrawBtn"); },
          [&](QWidget* dialog) {
            bool shot = Shoot(dialog, dataRoot + "/share-dwg.png", shots);
            Click(dialog, "ShareDwg_CancelBtn");
            return shot;
          })) {
    Say("The group's cloud space did not open.");
    return false;
  }
  Say("张明 opened the group's cloud space (ShareDwg) and saw the drawing.");

  // A shared chat on the drawing.
  if (!WithModal(
          "ShareDwgWindow", [&] { Click(chat, "IMWnd_SharedChatBtn"); },
          [&](QWidget* dialog) { return Click(dialog, "ShareDwg_SharedChatBtn"); }, false) ||
      !host.OwnSession()) {
    Say("The shared chat on the drawing did not start.");
    return false;
  }
  const int32_t groupId = host.OwnSession()->groupId;
  Say("张明 started a shared chat on " + std::string(kDrawingName) +
      "; the chat window is in its compact layout.");
  PeerJoinsSharedChat(host, world, groupId);
  if (!Pump([&] { return !host.DrawingInfoUpdates().empty() && !host.SentSyncs().empty(); }) ||
      !Pump([&] { return !StoredInfo(db, world.groupId, 2).empty(); })) {
    Say("王工's shared-chat message did not reach the host and the store.");
    return false;
  }
  Say("王工 joined; his notice and his drawing change reached the host's drawing window.");
  const int sharedColumns = FilledInfoColumns(StoredInfo(db, world.groupId, 2));
  if (sharedColumns != 7) {
    Say("Chat.db: the shared-chat row fills " + std::to_string(sharedColumns) +
        " info columns, not 7.");
    return false;
  }
  Say("Chat.db: the shared-chat message is stored with 7 info columns.");
  Idle(400);
  QWidget* frame = ShownWindow("DemoHostFrame");
  if (!Shoot(chat, dataRoot + "/chat-shared-compact.png", shots) ||
      !Shoot(frame, dataRoot + "/host-shared-session.png", shots)) {
    return false;
  }
  // 张明 leaves in the host; the chat window gets its full layout back.
  QWidget* column = chat->findChild<QWidget*>("IMWnd_Col1");
  if (!Click(frame, "DemoLeaveSharedChat") ||
      !Pump([&] { return !host.OwnSession() && column != nullptr && column->isVisible(); })) {
    Say("Leaving the shared chat did not restore the chat window.");
    return false;
  }
  Say("张明 left the shared chat; the chat window is back to its full layout.");
  return true;
}

}  // namespace demo
