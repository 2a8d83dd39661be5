#include "apps/demo_xmpp.h"

#include <QTextEdit>
#include <QWidget>

#include <cstdio>
#include <filesystem>

#include "apps/demo_input.h"
#include "apps/demo_world.h"
#include "platform/strings.h"

namespace demo {
namespace {

constexpr const char* kConfigFile = "/imsdk.json";

std::string Jid(const char* user) {
  return std::string(user) + "@" + xmpp_test::ProsodyServer::domain();
}

}  // namespace

XmppWorld::~XmppWorld() {
  if (!configFolder_.empty()) RemoveServerConfig(configFolder_);
}

bool XmppWorld::Start(const std::string& sdkConfigFolder) {
  if (!server_.Start({kUser, kAnswering, kQuiet, kStranger})) return false;
  server_.WriteSdkConfig(sdkConfigFolder);
  configFolder_ = sdkConfigFolder;
  answering_ = std::make_unique<xmpp_test::PeerProcess>(server_, kAnswering, "demo");
  if (!answering_->ready()) {
    std::fprintf(stderr, "demo: 王工's XMPP client did not sign in\n");
    return false;
  }
  std::printf("Prosody on 127.0.0.1:%d (data in %s); 王工 (%s) signed in with slixmpp.\n",
              server_.c2s_port(), server_.folder().c_str(), kAnswering);
  return true;
}

std::u16string XmppWorld::UserSignature() const {
  return platform::Utf8ToUtf16(xmpp_test::ProsodyServer::PasswordOf(kUser));
}

void XmppWorld::Greet(const std::string& text) {
  answering_->Send(kUser, text);
}

int XmppWorld::AnswerNewMessages() {
  std::vector<Json::Value> events = answering_->Events();
  int answered = 0;
  for (; seenEvents_ < events.size(); ++seenEvents_) {
    const Json::Value& event = events[seenEvents_];
    if (event["event"].asString() != "message" || event["from"].asString() != Jid(kUser)) continue;
    std::string body = event["body"].asString();
    if (body.empty()) continue;  // markers and other bodiless messages
    answering_->Send(kUser, kReplyPrefix + body);
    ++answered;
  }
  return answered;
}

void RemoveServerConfig(const std::string& sdkConfigFolder) {
  std::error_code ignored;
  std::filesystem::remove(sdkConfigFolder + kConfigFile, ignored);
}

ScriptResult RunXmppScript(XmppWorld& world, const std::string& dataRoot) {
  ScriptResult result;
  const std::string db = dataRoot + "/" + kUser + "/db/Chat.db";
  if (!PumpUntil([&] { return StoredMessageCount(db) >= 0; }, 15000)) {
    std::printf("The module did not open %s.\n", db.c_str());
    return result;
  }
  const int before = StoredMessageCount(db);
  const std::string hello = "你好，一层平面图我已经上传了。";
  world.Greet(hello);
  std::printf("王工 -> 张明 (through Prosody): %s\n", hello.c_str());
  QWidget* window = FindChatWindow();
  QString peerName;
  if (!PumpUntil(
          [&] {
            peerName = ConversationNameAt(window, 0);
            return StoredMessageCount(db) > before && !peerName.isEmpty();
          },
          15000)) {
    std::printf("The greeting did not reach the conversation list and Chat.db.\n");
    return result;
  }
  if (!OpenConversationNamed(window, peerName)) return result;
  auto* composer = window->findChild<QTextEdit*>(QStringLiteral("ChatWindow_SendrichEdit"));
  if (composer == nullptr) return result;
  const std::string answer = "好的，我下午看一下。";
  composer->setFocus();
  Type(composer, QString::fromStdString(answer));
  PressKey(composer, Qt::Key_Return);
  if (!PumpUntil([&] { return world.AnswerNewMessages() > 0; }, 15000)) {
    std::printf("王工's client did not receive the user's answer.\n");
    return result;
  }
  std::printf("张明 -> 王工 (typed in the composer, sent with Enter): %s\n", answer.c_str());
  if (!PumpUntil([&] { return StoredMessageCount(db) >= before + 3; }, 15000)) {
    std::printf("王工's reply did not reach Chat.db.\n");
    return result;
  }
  std::printf("王工 -> 张明: %s%s\n", kReplyPrefix, answer.c_str());
  PumpUntil([] { return false; }, 300);  // the list and the view redraw
  result.ok = SaveShot(window, dataRoot + "/chat-window-xmpp.png", result.screenshots);
  std::printf("Chat.db holds %d messages.\n", StoredMessageCount(db));
  return result;
}

}  // namespace demo
