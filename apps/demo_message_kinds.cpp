#include "apps/demo_message_kinds.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <cstdio>
#include <ctime>

#include <json/json.h>

#include "apps/demo_script.h"
#include "apps/demo_world.h"
#include "imsdk/engine_control.h"

namespace demo {
namespace {

void Say(const std::string& text) {
  std::printf("%s\n", text.c_str());
  std::fflush(stdout);
}

// A click on the conversation list's row named `name`, as the user would.
bool ClickConversation(QWidget* window, const QString& name) {
  auto* list = window->findChild<QAbstractItemView*>("ConversationList");
  if (!list) return false;
  for (int row = 0; row < list->model()->rowCount(); ++row) {
    QModelIndex index = list->model()->index(row, 0);
    if (!index.data().toString().contains(name)) continue;
    QPointF at = list->visualRect(index).center();
    QPointF global = list->viewport()->mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(list->viewport(), &press);
    QApplication::sendEvent(list->viewport(), &release);
    return true;
  }
  return false;
}

std::string Compact(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

std::string DrawingPayload() {
  Json::Value payload;
  payload["msgType"] = 1;
  Json::Value& data = payload["data"];
  data["fileId"] = 42;
  data["fileName"] = "一层平面图.dwg";
  data["fileSize"] = 254812;
  data["fileType"] = "dwg";
  data["fileRefId"] = "ref-42";
  data["fileMd5"] = "";
  data["filePath"] = "";
  data["fromUserId"] = kAnswering;
  data["subType"] = 1;
  data["type"] = 0;
  data["ts"] = Json::UInt64(std::time(nullptr));
  return Compact(payload);
}

std::string NoticePayload() {
  Json::Value payload;
  payload["msgType"] = 2;
  Json::Value& data = payload["data"];
  data["fromUserId"] = kAnswering;
  data["fromUserName"] = "王工";
  data["subType"] = 2;
  data["type"] = 0;
  data["content"] = "王工 结束了图纸“一层平面图”的共享聊图";
  data["ts"] = Json::UInt64(std::time(nullptr));
  return Compact(payload);
}

// A small floor plan to send as a picture.
std::string MakePicture(const std::string& dataRoot) {
  QImage image(320, 200, QImage::Format_RGB32);
  image.fill(QColor(0xF4, 0xF1, 0xE8));
  QPainter p(&image);
  p.setPen(QPen(QColor(0x33, 0x44, 0x66), 4));
  p.drawRect(20, 20, 280, 160);
  p.drawLine(140, 20, 140, 120);
  p.drawLine(140, 120, 300, 120);
  p.end();
  std::string path = dataRoot + "/一层平面图.png";
  return image.save(QString::fromStdString(path)) ? path : std::string();
}

std::string MakeFile(const std::string& dataRoot) {
  std::string path = dataRoot + "/设计说明.pdf";
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::WriteOnly)) return std::string();
  file.write(QByteArray(38 * 1024, 'x'));
  return path;
}

}  // namespace

std::string ShowEveryMessageKind(host::local::LocalHost& host, const std::string& dataRoot) {
  QWidget* window = FindChatWindow();
  auto* view = window ? window->findChild<QAbstractItemView*>("HisRecordList") : nullptr;
  if (!view || !ClickConversation(window, QStringLiteral("王工"))) {
    Say("The conversation with 王工 could not be opened.");
    return std::string();
  }
  PumpUntil([&] { return view->model()->rowCount() > 0; }, 3000);
  const int before = view->model()->rowCount();

  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  std::string picture = MakePicture(dataRoot);
  std::string file = MakeFile(dataRoot);
  int failures = 0;
  failures += engine.SendText(kAnswering, kTIMConv_C2C, kUser, "图纸收到[微笑]，辛苦了[鼓掌]") != 0;
  failures += picture.empty() || engine.SendImage(kAnswering, kTIMConv_C2C, kUser, picture) != 0;
  failures += file.empty() || engine.SendFile(kAnswering, kTIMConv_C2C, kUser, file) != 0;
  failures += engine.SendCustom(kAnswering, kTIMConv_C2C, kUser, DrawingPayload()) != 0;
  failures += engine.SendCustom(kAnswering, kTIMConv_C2C, kUser, NoticePayload()) != 0;
  if (failures != 0) Say("Some of 王工's messages were refused by the engine.");
  Say("王工 -> 张明: a text with emoticons, a picture, a file, a drawing and a notice");
  PumpUntil([&] { return view->model()->rowCount() >= before + 5; }, 5000);

  // The user's next send fails on the server.
  engine.FailNextResult("TIMMsgSendNewMsg", 10007);
  Json::Value payload;
  payload["msgType"] = 2;
  payload["data"]["fromUserId"] = kUser;
  payload["data"]["fromUserName"] = "张明";
  payload["data"]["subType"] = 0;
  payload["data"]["type"] = 0;
  payload["data"]["content"] = "这条消息发送失败了";
  payload["data"]["ts"] = Json::UInt64(std::time(nullptr));
  SharedSessionInfo session;
  session.sessionKey = platform::W(kAnswering);
  session.sessionText = u"demo-shared-drawing";
  host.SetSharedSession(session);
  host.SendDrawingMsgThroughModule(platform::W(Compact(payload)));
  host.ClearSharedSession();
  const int withSend = view->model()->rowCount();
  PumpUntil([&] { return view->model()->rowCount() >= withSend + 2; }, 5000);
  Say("张明 -> 王工: a message the server refused (marked failed, with the failure notice)");

  PumpUntil([] { return false; }, 300);  // downloads land, items settle
  view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
  QCoreApplication::processEvents();
  std::string shot = dataRoot + "/message-view.png";
  if (!window->grab().save(QString::fromStdString(shot))) {
    Say("Could not write the screenshot " + shot);
    return std::string();
  }
  return shot;
}

}  // namespace demo
