#pragma once
// Tests of the SDK's XMPP backend: the SDK signs in to a throwaway Prosody
// (one per test process, started on first use) beside slixmpp peers.
#include <memory>
#include <string>

#include "tests/imsdk/sdk_fixture.h"
#include "tests/xmpp/peer_process.h"
#include "tests/xmpp/prosody_server.h"

namespace xmpp_test {

// Accounts every server has; each test picks its own so that tests sharing
// a server never see each other's rosters and archives.
inline const std::vector<std::string> kAccounts = {
    "alice", "bob",  "carol", "dave", "erin", "fred", "gina", "hank",
    "ivan",  "judy", "kate",  "lena", "mike", "nora", "otto", "pia",
    "quinn", "ruth", "sam",   "tina", "uma",  "vera", "walt"};

ProsodyServer& Server();

// Test files: `size` bytes that differ with `seed`.
std::string Bytes(size_t size, unsigned seed);
void WriteFile(const std::string& path, const std::string& bytes);
std::string ReadFile(const std::string& path);
// A message of a file element and a picture element, each from a local file.
Json::Value FileAndPictureMessage(const std::string& file_path, const std::string& picture_path);

class XmppTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Signs in `user` with its password; returns the result record.
  imsdk_test::Record SignIn(const std::string& user, const std::string& password = "");
  std::unique_ptr<PeerProcess> StartPeer(const std::string& user);
  // Sends a text through the C API and waits for its result.
  imsdk_test::Record SendText(const std::string& to, const std::string& text);
  Json::Value History(const std::string& peer, int count, const Json::Value& last = {},
                      int conv_type = kTIMConv_C2C);
  // Waits for a record named `name` whose JSON satisfies `match`; null when none came.
  Json::Value WaitForRecord(const std::string& name,
                            const std::function<bool(const Json::Value&)>& match);
  // Downloads a file element's `id` through the C API.
  imsdk_test::Record Download(const std::string& id, const std::string& path);
  // The peer fetches `url` into `path` and returns the bytes.
  std::string Fetch(PeerProcess& peer, const std::string& url, const std::string& path);
  // Changes a setting in the signed-out `user`'s local store (as if the
  // SDK had written it); false when there was no such setting.
  bool ChangeStoredSetting(const std::string& user, const std::string& key,
                           const std::string& value);
  std::string config_folder_;
  imsdk_test::Recorder& rec = imsdk_test::GetRecorder();
  int calls_ = 0;
  std::string NextTag(const std::string& what) { return what + "#" + std::to_string(++calls_); }
};

}  // namespace xmpp_test
