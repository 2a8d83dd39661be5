// World persistence and the scripted answering peer.
#include <cstdlib>
#include <fstream>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

std::string Scratch(const std::string& name) {
  return std::string(std::getenv("XDG_RUNTIME_DIR")) + "/" + name;
}

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
  struct Case {
    const char* name;
    std::string text;
  } cases[] = {
      {"not json", "{"},
      {"other format", R"({"format":"x","version":1})"},
      {"truncated account",
       R"({"format":"imsdk-world","version":1,"next_message_id":1,"next_group_number":1,
           "next_file_number":1,"activity":0,"accounts":[{"id":"a"}],"groups":[],"files":[]})"},
      {"bad file data",
       R"({"format":"imsdk-world","version":1,"next_message_id":1,"next_group_number":1,
           "next_file_number":1,"activity":0,"accounts":[],"groups":[],
           "files":[{"id":"f","name":"n","data":"@@@"}]})"},
  };
  for (const auto& c : cases) {
    std::string path = Scratch("corrupt.json");
    std::ofstream(path) << c.text;
    std::string error = control.Load(path);
    EXPECT_NE(error.find("corrupt"), std::string::npos) << c.name << ": " << error;
    EXPECT_TRUE(control.HasAccount("keep")) << c.name;
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

TEST_F(SdkTest, ScriptedPeerAnswersEachText) {
  control.CreateAccount("echo", {"Echo", "", kTIMAddPermission_AllowAny, ""});
  ASSERT_TRUE(control.SetAutoReply("echo", 20, "收到："));
  SignIn("alice");
  ASSERT_EQ(TIMMsgSendNewMsg(
                "echo", 1, R"({"message_elem_array":[{"elem_type":0,"text_elem_content":"你好"}]})",
                OnResult, Tag("send")),
            TIM_SUCC);
  Json::Value reply = Parse(rec.WaitFor("new_msg")[0].json)[0];
  EXPECT_EQ(reply["message_sender"].asString(), "echo");
  EXPECT_EQ(reply["message_elem_array"][0]["text_elem_content"].asString(), "收到：你好");
}

TEST_F(SdkTest, ScriptedPeerAnswersSharedChatContentButNotOtherPayloads) {
  control.CreateAccount("echo", {"Echo", "", kTIMAddPermission_AllowAny, ""});
  ASSERT_TRUE(control.SetAutoReply("echo", 0, "收到："));
  SignIn("alice");
  auto send_custom = [&](const std::string& payload, const char* tag) {
    Json::Value msg;
    msg["message_elem_array"][0]["elem_type"] = 3;
    msg["message_elem_array"][0]["custom_elem_data"] = payload;
    ASSERT_EQ(
        TIMMsgSendNewMsg("echo", 1, Json::writeString(Json::StreamWriterBuilder(), msg).c_str(),
                         OnResult, Tag(tag)),
        TIM_SUCC);
    rec.Result(tag);
  };
  // A sync instruction, a payload that is not JSON and one with the wrong
  // shape get no answer; the shared-chat message does.
  send_custom(R"({"msgType":3,"data":{"subType":0,"content":"x"}})", "sync");
  send_custom("not json", "garbage");
  send_custom(R"({"msgType":"2","data":[1]})", "odd");
  send_custom(R"({"msgType":2,"data":{"content":"看图"}})", "chat");
  std::vector<Record> replies = rec.WaitFor("new_msg");
  ASSERT_EQ(replies.size(), 1u);
  EXPECT_EQ(Parse(replies[0].json)[0]["message_elem_array"][0]["text_elem_content"].asString(),
            "收到：看图");
}

}  // namespace
}  // namespace imsdk_test
