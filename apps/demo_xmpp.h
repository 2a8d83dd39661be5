#pragma once
// The demo on a real XMPP server instead of the embedded engine: a
// throwaway Prosody on loopback holding the demo's accounts, the SDK pointed
// at it by imsdk.json, and 王工 played by an independent XMPP client
// (slixmpp) that answers every text.

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

  // Starts the server, writes the SDK's configuration into `sdkConfigFolder`
  // and signs 王工 in; false (with the reason on stderr) on failure.
  bool Start(const std::string& sdkConfigFolder);
  // The user's signature: the account's password.
  std::u16string UserSignature() const;
  // 王工 writes to the user.
  void Greet(const std::string& text);
  // 王工 answers each text he received since the last call; returns how
  // many he answered.
  int AnswerNewMessages();

 private:
  xmpp_test::ProsodyServer server_;
  std::unique_ptr<xmpp_test::PeerProcess> answering_;
  std::string configFolder_;  // where imsdk.json was written; empty before
  size_t seenEvents_ = 0;
};

// A configuration left by an earlier run on a server would send this run's
// sign-in to a server that is gone.
void RemoveServerConfig(const std::string& sdkConfigFolder);

// The headless run on the server: 王工 writes, the user opens the
// conversation and answers in the composer, 王工 replies; one screenshot.
ScriptResult RunXmppScript(XmppWorld& world, const std::string& dataRoot);

}  // namespace demo
