// World persistence and the scripted answering peer.
#include <fstream>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

TEST_F(SdkTest, WorldSurvivesSaveAndLoad) {
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, "s"});
  control.CreateAccount("carol");
  control.MakeFriends("bob", "carol");
  std::string file = Scratch("f.txt");
  std::ofstream(file) << "bytes";
  ASSERT_EQ(control.SendFile("carol", 1, "bob", file), 0);
  std::string gid = control.CreateGroup("bob", "G", {"carol"});
  std::string path = Scratch("world.json");
  ASSERT_EQ(control.Save(path), "");
  control.Reset();
  EXPECT_FALSE(control.HasAccount("bob"));
  ASSERT_EQ(control.Load(path), "");
  EXPECT_EQ(control.FriendsOf("bob"), std::vector<std::string>{"carol"});
  EXPECT_EQ(control.MessageCount("bob", 1, "carol"), 1u);
  EXPECT_EQ(control.GroupMembers(gid), (std::vector<std::string>{"bob", "carol"}));
  EXPECT_EQ(control.StoredFileCount(), 1u);
}

TEST_F(SdkTest, CorruptWorldFileIsRefusedAndTheWorldKept) {
  control.CreateAccount("keep");
  const std::string head = R"({"format":"imsdk-world","version":1,"next_message_id":1,
      "next_group_number":1,"next_file_number":1,"activity":0,"groups":[],)";
  const std::string cases[] = {
      "{",
      R"({"format":"x","version":1})",
      head + R"("accounts":[{"id":"a"}],"files":[]})",  // truncated account
      head + R"("accounts":[],"files":[{"id":"f","name":"n","data":"@@@"}]})",
  };
  for (const auto& text : cases) {
    std::string path = Scratch("corrupt.json");
    std::ofstream(path) << text;
    std::string error = control.Load(path);
    EXPECT_NE(error.find("corrupt"), std::string::npos) << text << ": " << error;
    EXPECT_TRUE(control.HasAccount("keep")) << text;
  }
  EXPECT_NE(control.Load(Scratch("absent.json")), "");
}

TEST_F(SdkTest, AutoSaveWritesAfterEveryChange) {
  std::string path = Scratch("auto.json");
  ASSERT_EQ(control.SetAutoSave(path), "");
  control.CreateAccount("zed");
  control.Reset();
  ASSERT_EQ(control.Load(path), "");
  EXPECT_TRUE(control.HasAccount("zed"));
  EXPECT_NE(control.SetAutoSave("/no/such/dir/world.json"), "");
  control.SetAutoSave("");
}

TEST_F(SdkTest, ScriptedPeerAnswersTextsAndSharedChatContentOnly) {
  OpenAccount("echo", "Echo");
  ASSERT_TRUE(control.SetAutoReply("echo", 0, "收到："));
  SignIn("alice");
  auto send_custom = [&](const std::string& payload, const char* tag) {
    Call(tag, TIMMsgSendNewMsg, "echo", 1,
         Msg(kTIMElem_Custom, "custom_elem_data", payload).c_str());
  };
  // A sync instruction, a payload that is not JSON and one with the wrong
  // shape get no answer; the shared-chat message and the text do.
  send_custom(R"({"msgType":3,"data":{"subType":0,"content":"x"}})", "sync");
  send_custom("not json", "garbage");
  send_custom(R"({"msgType":"2","data":[1]})", "odd");
  send_custom(R"({"msgType":2,"data":{"content":"看图"}})", "chat");
  ASSERT_TRUE(control.SetAutoReply("echo", 20, "收到："));  // the delayed path
  Call("text", TIMMsgSendNewMsg, "echo", 1, TextMsg("你好").c_str());
  std::vector<Record> replies = rec.WaitFor("new_msg", 2);
  ASSERT_EQ(replies.size(), 2u);
  const char* expected[] = {"收到：看图", "收到：你好"};
  for (size_t i = 0; i < 2; ++i) {
    Json::Value reply = Parse(replies[i].json)[0];
    EXPECT_EQ(reply["message_sender"].asString(), "echo");
    EXPECT_EQ(reply["message_elem_array"][0]["text_elem_content"].asString(), expected[i]);
  }
}

}  // namespace
}  // namespace imsdk_test
