// Files and pictures through the server's upload service with a
// third-party client: both directions, byte for byte, an interrupted
// download resumed, a vanished file.
#include <filesystem>

#include "tests/xmpp/xmpp_fixture.h"

namespace xmpp_test {
namespace {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Record;
using imsdk_test::Tag;
using imsdk_test::Write;

using XmppFileTest = XmppTest;

TEST_F(XmppFileTest, FilesAndPicturesTravelBothWaysByteForByte) {
  const std::string dir = imsdk_test::Scratch("xmpp-files-" + std::to_string(getpid()));
  std::filesystem::remove_all(dir);
  const std::string drawing = Bytes(300 * 1024, 1), picture = Bytes(40 * 1024, 2);
  WriteFile(dir + "/plan view.dwg", drawing);
  WriteFile(dir + "/site.png", picture);
  ASSERT_EQ(SignIn("quinn").code, TIM_SUCC);
  auto ruth = StartPeer("ruth");

  const Json::Value msg = FileAndPictureMessage(dir + "/plan view.dwg", dir + "/site.png");
  ASSERT_EQ(TIMMsgSendNewMsg("ruth", kTIMConv_C2C, Write(msg).c_str(), OnResult, Tag("send")),
            TIM_SUCC);
  Record sent = rec.Result("send");
  ASSERT_EQ(sent.code, TIM_SUCC) << sent.json;
  Json::Value out = Parse(sent.json)["message_elem_array"];
  const std::string file_url = out[0]["file_elem_url"].asString();
  const std::string picture_url = out[1]["image_elem_orig_url"].asString();
  ASSERT_EQ(file_url.rfind("http://", 0), 0u) << sent.json;
  EXPECT_EQ(out[0]["file_elem_file_size"].asUInt64(), drawing.size());
  // Progress came before the result and reached the whole of each file.
  std::set<std::string> finished;
  for (const auto& r : rec.WaitFor("upload", rec.Count("upload"))) finished.insert(r.json);
  EXPECT_TRUE(
      finished.count(std::to_string(drawing.size()) + "/" + std::to_string(drawing.size())));
  EXPECT_TRUE(
      finished.count(std::to_string(picture.size()) + "/" + std::to_string(picture.size())));

  // A plain client sees readable links and fetches the same bytes.
  Json::Value at_ruth = ruth->WaitFor([](const Json::Value& e) { return e["event"] == "message"; });
  ASSERT_FALSE(at_ruth.isNull());
  EXPECT_EQ(at_ruth["body"].asString(), file_url + "\n" + picture_url);
  EXPECT_NE(at_ruth["xml"].asString().find("jabber:x:oob"), std::string::npos);
  EXPECT_TRUE(Fetch(*ruth, file_url, dir + "/ruth-plan.dwg") == drawing);
  EXPECT_TRUE(Fetch(*ruth, picture_url, dir + "/ruth-site.png") == picture);

  // The other way: the plain client uploads and shares links.
  const std::string notes = Bytes(120 * 1024, 3), photo = Bytes(60 * 1024, 4);
  WriteFile(dir + "/notes.txt", notes);
  WriteFile(dir + "/photo.jpg", photo);
  for (const char* name : {"notes.txt", "photo.jpg"}) {
    Json::Value upload;
    upload["cmd"] = "upload_send";
    upload["to"] = "quinn@localhost";
    upload["upload"] = "upload.localhost";
    upload["path"] = dir + "/" + name;
    ruth->Command(upload);
  }
  Json::Value file_elem, image_elem;
  WaitForRecord("new_msg", [&](const Json::Value& m) {
    for (const auto& e : m["message_elem_array"]) {
      if (e["elem_type"] == kTIMElem_File) file_elem = e;
      if (e["elem_type"] == kTIMElem_Image) image_elem = e;
    }
    return !file_elem.isNull() && !image_elem.isNull();
  });
  ASSERT_FALSE(file_elem.isNull());
  ASSERT_FALSE(image_elem.isNull());
  EXPECT_EQ(file_elem["file_elem_file_name"], "notes.txt");
  Record got = Download(file_elem["file_elem_file_id"].asString(), dir + "/got-notes.txt");
  ASSERT_EQ(got.code, TIM_SUCC) << got.json;
  EXPECT_EQ(Parse(got.json)["msg_download_elem_result_total_size"].asUInt64(), notes.size());
  EXPECT_TRUE(ReadFile(dir + "/got-notes.txt") == notes);

  // An interrupted download leaves a part that the next one completes.
  WriteFile(dir + "/got-photo.jpg.part", photo.substr(0, photo.size() / 3));
  got = Download(image_elem["image_elem_orig_id"].asString(), dir + "/got-photo.jpg");
  ASSERT_EQ(got.code, TIM_SUCC) << got.json;
  EXPECT_TRUE(ReadFile(dir + "/got-photo.jpg") == photo);
  EXPECT_FALSE(std::filesystem::exists(dir + "/got-photo.jpg.part"));

  const std::string gone = file_url.substr(0, file_url.find("/file_share/")) + "/file_share/gone/x";
  EXPECT_EQ(Download(gone, dir + "/gone").code, TIM_ERR_FILE_NOT_FOUND);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace xmpp_test
