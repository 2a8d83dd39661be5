#include "apps/demo_message_kinds.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QScrollBar>

#include <cstdio>

#include <json/json.h>

#include "apps/demo_input.h"
#include "apps/demo_script.h"
#include "apps/demo_world.h"
#include "imsdk/engine_control.h"

namespace demo {
namespace {

void Say(const std::string& text) {
  std::printf("%s\n", text.c_str());
  std::fflush(stdout);
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
  data["ts"] = Json::UInt64(PayloadTimeNow());
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
  data["ts"] = Json::UInt64(PayloadTimeNow());
  return Compact(payload);
}

std::string MakeFile(const std::string& dataRoot) {
  std::string path = dataRoot + "/设计说明.pdf";
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::WriteOnly)) return std::string();
  file.write(QByteArray(38 * 1024, 'x'));
  return path;
}

}  // namespace

std::string MakeFloorPlanPicture(const std::string& dataRoot) {
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

std::string ShowEveryMessageKind(const std::string& dataRoot) {
  QWidget* window = FindChatWindow();
  auto* view = window ? window->findChild<QAbstractItemView*>("HisRecordList") : nullptr;
  auto* conversations = window ? window->findChild<QAbstractButton*>("RecentConverBtn") : nullptr;
  if (!view || !conversations) {
    Say("The chat window has no message view.");
    return std::string();
  }
  conversations->click();
  if (!OpenConversationNamed(window, QStringLiteral("王工"))) {
    Say("The conversation with 王工 could not be opened.");
    return std::string();
  }
  PumpUntil([&] { return view->model()->rowCount() > 0; }, 3000);
  const int before = view->model()->rowCount();

  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  std::string picture = MakeFloorPlanPicture(dataRoot);
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

  // The user's next send fails on the server: the item is marked failed and
  // the failure notice follows as a system line.
  engine.FailNextResult("TIMMsgSendNewMsg", 10007);
  const int withoutSend = view->model()->rowCount();
  if (!TypeAndSend("这条消息发不出去")) Say("The user could not type the failing message.");
  if (PumpUntil([&] { return view->model()->rowCount() >= withoutSend + 2; }, 5000)) {
    Say("张明 -> 王工: a message the server refused (marked failed, with the failure notice)");
  } else {
    Say("The failed send did not reach the message view.");
  }

  PumpUntil([] { return false; }, 300);  // downloads land, items settle
  // Tall enough for the whole conversation in one picture.
  const QSize size = window->size();
  window->resize(size.width(), 1500);
  PumpUntil([] { return false; }, 100);
  view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
  QCoreApplication::processEvents();
  std::string shot = dataRoot + "/message-view.png";
  bool saved = window->grab().save(QString::fromStdString(shot));
  window->resize(size);
  if (!saved) {
    Say("Could not write the screenshot " + shot);
    return std::string();
  }
  return shot;
}

}  // namespace demo
