#include "apps/demo_xmpp.h"

#include <QTextEdit>
#include <QWidget>

#include <cstdio>
#include <filesystem>
#include <functional>

#include "apps/demo_input.h"
#include "apps/demo_message_kinds.h"
#include "apps/demo_world.h"
#include "platform/strings.h"

namespace demo {
namespace {

constexpr const char* kConfigFile = "/imsdk.json";
// The group's room: its id is the group id.
constexpr const char* kGroupId = "design-review";
constexpr const char* kGroupName = "图纸评审组";

std::string Jid(const char* user) {
  return std::string(user) + "@" + xmpp_test::ProsodyServer::domain();
}

std::string RoomJid() {
  return std::string(kGroupId) + "@conference." + xmpp_test::ProsodyServer::domain();
}

// Signs `user` in with the nick others see; null (with the reason on
// stderr) when it failed.
std::unique_ptr<xmpp_test::PeerProcess> SignInPeer(const xmpp_test::ProsodyServer& server,
                                                   const char* user, const char* nick) {
  auto peer = std::make_unique<xmpp_test::PeerProcess>(server, user, "demo");
  Json::Value vcard;
  vcard["cmd"] = "vcard";
  vcard["nick"] = nick;
  if (peer->ready()) peer->Command(vcard);
  if (!peer->ready() || peer->WaitForEvent("vcard").isNull()) {
    std::fprintf(stderr, "demo: %s's XMPP client did not sign in\n", nick);
    return nullptr;
  }
  return peer;
}

bool Subscription(const Json::Value& event, const char* from, const char* type) {
  return event["event"] == "presence" && event["type"] == type && event["from"] == Jid(from);
}

struct Friend {
  xmpp_test::PeerProcess* peer;
  const char* id;
  const char* nick;
};

// Makes `friends` the user's friends (mutual subscriptions, the user's
// roster naming them by their nicks) through the user's own account, before
// the SDK signs in; false when a step did not happen.
bool MakeFriends(const xmpp_test::ProsodyServer& server, const std::vector<Friend>& friends) {
  auto user = SignInPeer(server, kUser, "张明");
  if (!user) return false;
  auto presence = [](xmpp_test::PeerProcess& peer, const char* to, const char* type) {
    Json::Value cmd;
    cmd["cmd"] = "presence";
    cmd["to"] = Jid(to);
    cmd["type"] = type;
    peer.Command(cmd);
  };
  for (const auto& [peer, id, nick] : friends) {
    Json::Value name;
    name["cmd"] = "raw";
    name["data"] = "<iq type='set' id='name-" + std::string(id) +
                   "'><query xmlns='jabber:iq:roster'><item jid='" + Jid(id) + "' name='" + nick +
                   "'/></query></iq>";
    user->Command(name);
    presence(*user, id, "subscribe");
    if (peer->WaitFor([](const Json::Value& e) { return Subscription(e, kUser, "subscribe"); })
            .isNull()) {
      return false;
    }
    presence(*peer, kUser, "subscribed");
    presence(*peer, kUser, "subscribe");
    if (user->WaitFor([&](const Json::Value& e) { return Subscription(e, id, "subscribe"); })
            .isNull()) {
      return false;
    }
    presence(*user, id, "subscribed");
    if (user->WaitFor([&](const Json::Value& e) {
              return e["event"] == "roster" && e["jid"] == Jid(id) && e["subscription"] == "both";
            })
            .isNull()) {
      return false;
    }
  }
  Json::Value quit;
  quit["cmd"] = "quit";
  user->Command(quit);
  return !user->WaitForEvent("disconnected").isNull();
}

// Events of `peer` saying the occupant `nick` is in the group's room.
bool InRoom(const Json::Value& event, const char* nick) {
  return event["event"] == "presence" && event["type"] == "available" &&
         event["from_full"].asString() == RoomJid() + "/" + nick;
}

}  // namespace

XmppWorld::~XmppWorld() {
  if (!configFolder_.empty()) RemoveServerConfig(configFolder_);
}

bool XmppWorld::Start(const std::string& sdkConfigFolder) {
  if (!server_.Start({kUser, kAnswering, kQuiet, kStranger})) return false;
  // What the SDK kept of an earlier run's server (archive ids, read marks)
  // means nothing to this new one.
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(sdkConfigFolder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("imsdk-", 0) == 0 && entry.path().extension() == ".sqlite") {
      std::filesystem::remove(entry.path(), ignored);
    }
  }
  server_.WriteSdkConfig(sdkConfigFolder);
  configFolder_ = sdkConfigFolder;
  answering_ = SignInPeer(server_, kAnswering, "王工");
  quiet_ = SignInPeer(server_, kQuiet, "李工");
  if (!answering_ || !quiet_) return false;
  if (!MakeFriends(server_,
                   {{answering_.get(), kAnswering, "王工"}, {quiet_.get(), kQuiet, "李工"}})) {
    std::fprintf(stderr, "demo: 王工 and 李工 did not become the user's friends\n");
    return false;
  }
  // 王工's room: the user is invited (the invitation waits for the sign-in).
  Json::Value room;
  room["cmd"] = "make_room";
  room["room"] = RoomJid();
  room["name"] = kGroupName;
  room["nick"] = kAnswering;
  room["members"].append(Jid(kQuiet));
  room["members"].append(Jid(kUser));
  answering_->Command(room);
  if (answering_->WaitForEvent("room").isNull()) {
    std::fprintf(stderr, "demo: 王工 could not make the group's room\n");
    return false;
  }
  Json::Value enter;
  enter["cmd"] = "raw";
  enter["data"] = "<presence to='" + RoomJid() + "/" + kQuiet +
                  "'><x xmlns='http://jabber.org/protocol/muc'><history maxstanzas='0'/></x>"
                  "</presence>";
  quiet_->Command(enter);
  if (quiet_->WaitFor([](const Json::Value& e) { return InRoom(e, kQuiet); }).isNull()) {
    std::fprintf(stderr, "demo: 李工 could not enter the group's room\n");
    return false;
  }
  std::printf(
      "Prosody on 127.0.0.1:%d (data in %s); 王工 (%s) and 李工 (%s) signed in with slixmpp; "
      "group %s is the room %s.\n",
      server_.c2s_port(), server_.folder().c_str(), kAnswering, kQuiet, kGroupName,
      RoomJid().c_str());
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

bool XmppWorld::UserInGroup() const {
  for (const auto& event : answering_->Events()) {
    if (InRoom(event, kUser)) return true;
  }
  return false;
}

void XmppWorld::SayInGroup(bool quiet, const std::string& text) {
  Json::Value send;
  send["cmd"] = "send";
  send["to"] = RoomJid();
  send["type"] = "groupchat";
  send["body"] = text;
  (quiet ? quiet_ : answering_)->Command(send);
}

void XmppWorld::ShareInGroup(const std::string& path) {
  Json::Value upload;
  upload["cmd"] = "upload_send";
  upload["to"] = RoomJid();
  upload["type"] = "groupchat";
  upload["upload"] = std::string("upload.") + xmpp_test::ProsodyServer::domain();
  upload["path"] = path;
  quiet_->Command(upload);
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
  // Named by his nick once his profile is read (an earlier run's group may
  // be above him).
  if (!PumpUntil(
          [&] {
            return StoredMessageCount(db) > before &&
                   (OpenConversationNamed(window, QString::fromUtf8("王工")) ||
                    OpenConversationNamed(window, QString::fromUtf8(kAnswering)));
          },
          15000)) {
    std::printf("The greeting did not reach the conversation list and Chat.db.\n");
    return result;
  }
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
  if (!SaveShot(window, dataRoot + "/chat-window-xmpp.png", result.screenshots)) return result;

  // The group: the invitation waited for the sign-in; the SDK entered the room.
  if (!PumpUntil([&] { return world.UserInGroup(); }, 15000)) {
    std::printf("The user's client did not enter the group's room.\n");
    return result;
  }
  const std::string welcome = "大家好，今天评审一层平面图。";
  const std::string marked = "收到，我把标注改好了，平面图发在群里。";
  const std::string picture = MakeFloorPlanPicture(dataRoot);
  if (picture.empty()) return result;
  // Two clients: each speaks once the one before was heard, so the room
  // keeps the order of the conversation.
  const std::function<void()> turns[] = {
      [&] {
        world.SayInGroup(false, welcome);
        std::printf("王工 -> 图纸评审组: %s\n", welcome.c_str());
      },
      [&] {
        world.SayInGroup(true, marked);
        std::printf("李工 -> 图纸评审组: %s\n", marked.c_str());
      },
      [&] {
        world.ShareInGroup(picture);
        std::printf("李工 -> 图纸评审组: the picture 一层平面图.png (uploaded to the server)\n");
      }};
  int heard = StoredMessageCount(db);
  for (const auto& turn : turns) {
    turn();
    if (!PumpUntil([&] { return StoredMessageCount(db) > heard; }, 15000)) {
      std::printf("The group's message did not reach Chat.db.\n");
      return result;
    }
    heard = StoredMessageCount(db);
  }
  if (!OpenConversationNamed(window, QString::fromUtf8("图纸评审组"))) {
    std::printf("The group is not in the conversation list.\n");
    return result;
  }
  PumpUntil([] { return false; }, 1500);  // the picture downloads, the view redraws
  result.ok = SaveShot(window, dataRoot + "/group-chat-xmpp.png", result.screenshots);
  std::printf("Chat.db holds %d messages.\n", StoredMessageCount(db));
  return result;
}

}  // namespace demo
