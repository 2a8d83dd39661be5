#pragma once
// The demo on a real XMPP server instead of the embedded engine: a
// throwaway Prosody on loopback holding the demo's accounts, the SDK pointed
// at it by imsdk.json, and 王工 and 李工 played by independent XMPP clients
// (slixmpp). 王工 answers every text; his room 图纸评审组 has the user and
// 李工 as members, like the embedded demo's group.

#include <memory>
#include <string>

#include "apps/demo_script.h"
#include "tests/xmpp/peer_process.h"
#include "tests/xmpp/prosody_server.h"

namespace demo {

class XmppWorld {
 public:
  XmppWorld() = default;
  ~XmppWorld();
  XmppWorld(const XmppWorld&) = delete;
  XmppWorld& operator=(const XmppWorld&) = delete;

  // Starts the server, writes the SDK's configuration into `sdkConfigFolder`,
  // signs 王工 and 李工 in and has 王工 make the group's room (the user is
  // invited, 李工 enters); false (with the reason on stderr) on failure.
  bool Start(const std::string& sdkConfigFolder);
  // The user's signature: the account's password.
  std::u16string UserSignature() const;
  // 王工 writes to the user.
  void Greet(const std::string& text);
  // 王工 answers each text he received since the last call; returns how
  // many he answered.
  int AnswerNewMessages();
  // True once the user's client has entered the group's room.
  bool UserInGroup() const;
  // 王工 (`quiet` false) or 李工 writes in the group.
  void SayInGroup(bool quiet, const std::string& text);
  // 李工 uploads the picture at `path` and shares it in the group.
  void ShareInGroup(const std::string& path);

 private:
  xmpp_test::ProsodyServer server_;
  std::unique_ptr<xmpp_test::PeerProcess> answering_;
  std::unique_ptr<xmpp_test::PeerProcess> quiet_;
  std::string configFolder_;  // where imsdk.json was written; empty before
  size_t seenEvents_ = 0;
};

// A configuration left by an earlier run on a server would send this run's
// sign-in to a server that is gone.
void RemoveServerConfig(const std::string& sdkConfigFolder);

// The headless run on the server: 王工 writes, the user opens the
// conversation and answers in the composer, 王工 replies; then 王工 and 李工
// talk in the group and 李工 shares a floor plan there. One screenshot of
// each conversation.
ScriptResult RunXmppScript(XmppWorld& world, const std::string& dataRoot);

}  // namespace demo
