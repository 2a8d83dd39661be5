#include "tests/xmpp/xmpp_fixture.h"

#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace xmpp_test {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Record;
using imsdk_test::Tag;

std::string Bytes(size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<char>((i * 131 + seed * 7 + i / 253) & 0xff);
  return bytes;
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

Json::Value FileAndPictureMessage(const std::string& file_path, const std::string& picture_path) {
  Json::Value msg;
  msg["message_elem_array"][0]["elem_type"] = kTIMElem_File;
  msg["message_elem_array"][0]["file_elem_file_path"] = file_path;
  msg["message_elem_array"][0]["file_elem_file_name"] =
      std::filesystem::path(file_path).filename().string();
  msg["message_elem_array"][1]["elem_type"] = kTIMElem_Image;
  msg["message_elem_array"][1]["image_elem_orig_path"] = picture_path;
  return msg;
}

ProsodyServer& Server() {
  static ProsodyServer server;
  if (!server.running() && server.folder().empty()) server.Start(kAccounts);
  return server;
}

void XmppTest::SetUp() {
  ASSERT_TRUE(Server().running()) << "no Prosody (scripts/install-deps installs it)";
  rec.Clear();
  rec.SetPatience(std::chrono::seconds(20));
  imsdk_test::RegisterAllCallbacks();
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  config_folder_ =
      imsdk_test::Scratch(std::string("xmpp-") + info->test_suite_name() + "-" + info->name());
  std::filesystem::remove_all(config_folder_);
  Server().WriteSdkConfig(config_folder_);
  Json::Value config;
  config["sdk_config_config_file_path"] = config_folder_;
  ASSERT_EQ(TIMInit(1, imsdk_test::Write(config).c_str()), TIM_SUCC);
}

void XmppTest::TearDown() {
  TIMUninit();
  if (!Server().running()) Server().Restart();
}

Record XmppTest::SignIn(const std::string& user, const std::string& password) {
  const std::string tag = NextTag("login " + user);
  const std::string pw = password.empty() ? ProsodyServer::PasswordOf(user) : password;
  EXPECT_EQ(TIMLogin(user.c_str(), pw.c_str(), OnResult, Tag(tag)), TIM_SUCC);
  return rec.Result(tag);
}

std::unique_ptr<PeerProcess> XmppTest::StartPeer(const std::string& user) {
  auto peer = std::make_unique<PeerProcess>(Server(), user);
  EXPECT_TRUE(peer->ready()) << "the slixmpp peer " << user << " did not sign in";
  return peer;
}

Record XmppTest::SendText(const std::string& to, const std::string& text) {
  const std::string tag = NextTag("send " + to);
  EXPECT_EQ(TIMMsgSendNewMsg(to.c_str(), kTIMConv_C2C, imsdk_test::TextMsg(text).c_str(), OnResult,
                             Tag(tag)),
            TIM_SUCC);
  return rec.Result(tag);
}

Json::Value XmppTest::History(const std::string& peer, int count, const Json::Value& last,
                              int conv_type) {
  Json::Value param;
  param["msg_getmsglist_param_count"] = count;
  param["msg_getmsglist_param_last_msg"] = last.isNull() ? Json::Value(Json::objectValue) : last;
  const std::string tag = NextTag("history " + peer);
  EXPECT_EQ(TIMMsgGetMsgList(peer.c_str(), conv_type, imsdk_test::Write(param).c_str(), OnResult,
                             Tag(tag)),
            TIM_SUCC);
  Record r = rec.Result(tag);
  EXPECT_EQ(r.code, TIM_SUCC) << r.json;
  return Parse(r.json);
}

}  // namespace xmpp_test

namespace xmpp_test {

Json::Value XmppTest::WaitForRecord(const std::string& name,
                                    const std::function<bool(const Json::Value&)>& match) {
  for (size_t n = 1;; ++n) {
    auto records = rec.WaitFor(name, n);
    if (records.size() < n) return Json::Value();  // none came in time
    Json::Value value = Parse(records[n - 1].json);
    if (value.isArray()) {
      for (const auto& item : value) {
        if (match(item)) return item;
      }
    } else if (match(value)) {
      return value;
    }
  }
}

Record XmppTest::Download(const std::string& id, const std::string& path) {
  Json::Value param;
  param["msg_download_elem_param_id"] = id;
  param["msg_download_elem_param_type"] = 0;
  const std::string tag = NextTag("download");
  EXPECT_EQ(
      TIMMsgDownloadElemToPath(imsdk_test::Write(param).c_str(), path.c_str(), OnResult, Tag(tag)),
      TIM_SUCC);
  return rec.Result(tag);
}

std::string XmppTest::Fetch(PeerProcess& peer, const std::string& url, const std::string& path) {
  Json::Value fetch;
  fetch["cmd"] = "fetch";
  fetch["url"] = url;
  fetch["path"] = path;
  peer.Command(fetch);
  Json::Value got = peer.WaitFor(
      [&](const Json::Value& e) { return e["event"] == "fetched" && e["path"] == path; });
  EXPECT_EQ(got["status"], 200) << url;
  return ReadFile(path);
}

bool XmppTest::ChangeStoredSetting(const std::string& user, const std::string& key,
                                   const std::string& value) {
  sqlite3* db = nullptr;
  const std::string file = config_folder_ + "/imsdk-" + user + "@localhost.sqlite";
  if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
    sqlite3_close(db);
    return false;
  }
  sqlite3_stmt* update = nullptr;
  sqlite3_prepare_v2(db, "UPDATE settings SET value=? WHERE key=?", -1, &update, nullptr);
  sqlite3_bind_text(update, 1, value.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_text(update, 2, key.c_str(), -1, SQLITE_TRANSIENT);
  const bool changed = sqlite3_step(update) == SQLITE_DONE && sqlite3_changes(db) == 1;
  sqlite3_finalize(update);
  sqlite3_close(db);
  return changed;
}

}  // namespace xmpp_test
