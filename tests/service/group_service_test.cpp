// The group service end to end: the local host (kept in step with the
// engine's groups through the engine's group hook), the embedded engine and
// the service between them.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/data_folders.h"
#include "platform/module_workers.h"
#include "tests/service/group_world.h"

namespace service_test {
namespace {

using host::GroupAction;
using host::GroupActionResult;
using host::OwnerTransferResult;

// Passes the engine's group changes on to the local host and notes, for
// each, the host calls made before it: the chat side must follow the host.
class OrderNotingMirror final : public host::local::GroupMirror {
 public:
  explicit OrderNotingMirror(host::local::LocalHost& host) : host_(host) {}

  struct Change {
    std::string kind;
    std::vector<std::string> hostCallsBefore;
  };
  std::vector<Change> Changes() const {
    std::lock_guard lock(mutex_);
    return changes_;
  }

  void OnGroupCreated(const WString& id, const WString& name, const WString& owner,
                      const std::vector<WString>& members) override {
    Note("created");
    host_.OnGroupCreated(id, name, owner, members);
  }
  void OnMembersJoined(const WString& id, const std::vector<WString>& members) override {
    Note("joined");
    host_.OnMembersJoined(id, members);
  }
  void OnMembersLeft(const WString& id, const std::vector<WString>& members) override {
    Note("left");
    host_.OnMembersLeft(id, members);
  }
  void OnGroupRenamed(const WString& id, const WString& name) override {
    Note("renamed");
    host_.OnGroupRenamed(id, name);
  }
  void OnOwnerChanged(const WString& id, const WString& owner) override {
    Note("owner");
    host_.OnOwnerChanged(id, owner);
  }
  void OnGroupDismissed(const WString& id) override {
    Note("dismissed");
    host_.OnGroupDismissed(id);
  }

 private:
  void Note(const char* kind) {
    Change change{kind, host_.CallNames()};
    std::lock_guard lock(mutex_);
    changes_.push_back(std::move(change));
  }
  host::local::LocalHost& host_;
  mutable std::mutex mutex_;
  std::vector<Change> changes_;
};

CloudGroupMember Member(int32_t id) {
  CloudGroupMember member;
  member.accountId = id;
  member.imUserId = platform::Utf8ToUtf16(std::to_string(id));
  return member;
}

class GroupServiceTest : public GroupWorldTest {
 protected:
  void SetUp() override {
    GroupWorldTest::SetUp();
    // One link at a time: the engine's changes go through the noting mirror.
    link_.reset();
    link_ = std::make_unique<host::local::EngineGroupLink>(mirror_);
  }
  // The last engine change came after the host call `hostCall`.
  bool LastChangeFollowed(const std::string& hostCall) const {
    const auto changes = mirror_.Changes();
    if (changes.empty()) return false;
    const auto& before = changes.back().hostCallsBefore;
    return std::find(before.begin(), before.end(), hostCall) != before.end();
  }
  int32_t CloudIdOf(const std::string& imGroupId) const {
    auto group = host_.FindGroup(platform::Utf8ToUtf16(imGroupId));
    return group ? group->cloudGroupId : -1;
  }

  OrderNotingMirror mirror_{host_};
};

TEST_F(GroupServiceTest, GroupActionsAskTheHostFirstAndFollowOnlyOnSuccess) {
  using A = GroupAction;
  using R = GroupActionResult;
  const char16_t* const kNotOwner = u"非管理员不能删除群成员！！！";
  const struct {
    A action;
    const char* owner;
    int32_t member;       // 0: none
    const char* failing;  // host operation made to fail
    R result;
    const char16_t* boxTitle;  // nullptr: no box
    const char16_t* boxText;
    const char* hostCall;  // the host call the engine change followed
    const char* change;    // the engine change that followed, "" none
    const char* membersAfter;
  } cases[] = {
      {A::kRemoveMembers, "10001", 10003, "", R::kDone, nullptr, nullptr, "RemoveGroupMembers",
       "left", "10001 10002"},
      {A::kRemoveMembers, "10002", 10003, "", R::kNotOwner, u"提示", kNotOwner, "", "",
       "10002 10001 10003"},
      {A::kRemoveMembers, "10001", 10003, "RemoveGroupMembers", R::kHostFailed, u"错误",
       u"删除群成员失败！！！", "", "", "10001 10002 10003"},
      {A::kRemoveMembers, "10001", 10003, "GetGroupRole", R::kRoleQueryFailed, u"错误",
       u"查询群角色失败！！！", "", "", "10001 10002 10003"},
      {A::kLeave, "10002", 10001, "", R::kDone, nullptr, nullptr, "RemoveGroupMembers", "left",
       "10002 10003"},
      {A::kLeave, "10002", 10001, "RemoveGroupMembers", R::kHostFailed, u"错误", u"退群失败！！！",
       "", "", "10002 10001 10003"},
      {A::kLeave, "10002", 10001, "GetGroupMembers", R::kGroupQueryFailed, u"错误",
       u"查询群信息失败！！！", "", "", "10002 10001 10003"},
      {A::kDisband, "10001", 0, "", R::kDone, nullptr, nullptr, "DisbandCloudGroup", "dismissed",
       ""},
      {A::kDisband, "10002", 0, "", R::kNotOwner, u"提示", kNotOwner, "", "", "10002 10001 10003"},
      {A::kDisband, "10001", 0, "DisbandCloudGroup", R::kHostFailed, u"错误", u"解散群组失败！！！",
       "", "", "10001 10002 10003"},
      {A::kAddMembers, "10002", 10003, "", R::kDone, nullptr, nullptr, "AddGroupMembers", "joined",
       "10002 10001 10003"},
      {A::kAddMembers, "10002", 10003, "AddGroupMembers", R::kHostFailed, u"错误",
       u"添加群成员失败!", "", "", "10002 10001"},
      {A::kAddMembers, "10002", 10003, "GetGroupMembers", R::kGroupQueryFailed, u"查询群信息",
       u"查询群信息失败!", "", "", "10002 10001"},
      {A::kRename, "10001", 0, "", R::kDone, nullptr, nullptr, "RenameGroup", "renamed",
       "10001 10002 10003"},
      {A::kRename, "10001", 0, "RenameGroup", R::kHostFailed, u"错误", u"设置群名称失败！！！", "",
       "", "10001 10002 10003"},
  };
  ASSERT_TRUE(SignIn());
  int n = 0;
  for (const auto& c : cases) {
    const std::string groupId = "g" + std::to_string(++n);
    SCOPED_TRACE(groupId);
    std::vector<std::string> others;
    for (const char* id : {"10001", "10002", "10003"}) {
      const bool addedLater = c.action == A::kAddMembers && std::string(id) == "10003";
      if (id != std::string(c.owner) && !addedLater) others.push_back(id);
    }
    ASSERT_EQ(engine.CreateGroup(c.owner, "G", others, groupId), groupId);
    const WString wideId = platform::Utf8ToUtf16(groupId);
    ASSERT_TRUE(host_.FindGroup(wideId));  // through the link
    ASSERT_TRUE(PumpUntil([&] { return tools->IsJoinedGroup(wideId); }));
    host_.ClearCalls();
    if (*c.failing != '\0') host_.FailOperation(c.failing);
    const size_t changesBefore = mirror_.Changes().size();
    const size_t boxesBefore = window.Boxes().size();

    host::GroupActionRequest request;
    request.action = c.action;
    request.imGroupId = wideId;
    if (c.member != 0) request.members.push_back(Member(c.member));
    request.newName = u"新名字";
    EXPECT_EQ(tools->RunGroupAction(request, "test "), c.result);
    if (*c.failing != '\0') host_.FailOperation(c.failing, false);

    const auto changes = mirror_.Changes();
    ASSERT_EQ(changes.size(), changesBefore + (*c.change == '\0' ? 0 : 1));
    if (*c.change != '\0') {
      EXPECT_EQ(changes.back().kind, c.change);
      EXPECT_TRUE(LastChangeFollowed(c.hostCall));
    }
    EXPECT_EQ(Joined(engine.GroupMembers(groupId)), c.membersAfter);
    if (*c.membersAfter == '\0' || (c.action == A::kLeave && c.result == R::kDone)) {
      EXPECT_TRUE(PumpUntil([&] { return !tools->IsJoinedGroup(wideId); }));
    }
    std::vector<Box> boxes = window.Boxes(boxesBefore);
    ASSERT_EQ(boxes.size(), c.boxTitle == nullptr ? 0u : 1u);
    if (c.boxTitle != nullptr) {
      EXPECT_EQ(boxes[0].title, c.boxTitle);
      EXPECT_EQ(boxes[0].text, c.boxText);
    }
  }
  EXPECT_EQ(engine.GroupName("g14"), "新名字");
}

TEST_F(GroupServiceTest, CreateGroupMakesTheCloudGroupThenTheChatGroupOfTheSameId) {
  ASSERT_TRUE(SignIn());
  host_.FailOperation("CreateCloudGroup");
  EXPECT_FALSE(tools->CreateGroup(u"评审", {Member(10002)}));
  EXPECT_TRUE(mirror_.Changes().empty());
  host_.FailOperation("CreateCloudGroup", false);

  ASSERT_TRUE(tools->CreateGroup(u"评审", {Member(10002)}));
  ASSERT_EQ(mirror_.Changes().size(), 1u);
  EXPECT_EQ(mirror_.Changes()[0].kind, "created");
  EXPECT_TRUE(LastChangeFollowed("CreateCloudGroup"));
  ASSERT_TRUE(host_.FindGroup(u"group_1001"));
  EXPECT_EQ(engine.GroupName("group_1001"), "评审");
  EXPECT_EQ(engine.GroupOwner("group_1001"), "10001");
  EXPECT_EQ(engine.GroupMembers("group_1001"), (std::vector<std::string>{"10001", "10002"}));
  // The tips reload the groups: the new group is known with its cloud id.
  ASSERT_TRUE(PumpUntil([&] {
    auto group = tools->FindGroup(u"group_1001");
    return group && group->cloud_group_id == CloudIdOf("group_1001") && group->name == u"评审";
  }));
  // The chat side refuses: the cloud group does not stay behind as an orphan.
  engine.FailNextCall("TIMGroupCreate", TIM_ERR_FAILED);
  EXPECT_FALSE(tools->CreateGroup(u"孤儿", {Member(10002)}));
  EXPECT_FALSE(host_.FindGroup(u"group_1002"));
}

TEST_F(GroupServiceTest, OwnerTransferAsksTheHostConfirmsAndFollows) {
  using R = OwnerTransferResult;
  const char16_t* const kAsk = u"确定选择王工为新群主,你将放弃群主身份。";
  const struct {
    int32_t newOwner;
    bool confirm;
    const char* failing;
    R result;
    bool asked;
    const char16_t* title;  // the box after the question, nullptr none
    const char16_t* text;
    const char* ownerAfter;
  } cases[] = {
      {-1, true, "", R::kNoNewOwner, false, nullptr, nullptr, "10001"},
      {10003, true, "", R::kRefused, false, nullptr, nullptr, "10001"},
      {10002, true, "GetGroupMembers", R::kGroupQueryFailed, false, u"错误",
       u"查询群信息失败！！！", "10001"},
      {10002, false, "", R::kCancelled, true, nullptr, nullptr, "10001"},
      {10002, true, "TransferGroupOwner", R::kHostFailed, true, u"错误", u"转移群组权限失败!",
       "10001"},
      {10002, true, "", R::kDone, true, u"提示", u"转移群组权限成功! \"王工\" 已成为新群主",
       "10002"},
  };
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(engine.CreateGroup("10001", "G", {"10002"}, "gt"), "gt");
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.result));
    host_.ClearCalls();
    window.confirm = c.confirm;
    if (*c.failing != '\0') host_.FailOperation(c.failing);
    const size_t changesBefore = mirror_.Changes().size();
    const size_t boxesBefore = window.Boxes().size();
    host::OwnerTransferRequest request{CloudIdOf("gt"), c.newOwner, u"王工"};
    EXPECT_EQ(tools->TransferGroupOwner(u"gt", request, "test "), c.result);
    if (*c.failing != '\0') host_.FailOperation(c.failing, false);
    // Like every group action it starts by asking the host for the group.
    const std::vector<std::string> calls = host_.CallNames();
    auto at = [&](const char* name) { return std::find(calls.begin(), calls.end(), name); };
    EXPECT_TRUE(c.newOwner == -1 ? calls.empty()
                                 : at("GetGroupMembers") < at("CheckGroupOwnerTransfer"));
    if (c.result == R::kGroupQueryFailed) {
      EXPECT_EQ(at("CheckGroupOwnerTransfer"), calls.end());
    }
    std::vector<std::pair<WString, WString>> boxes, expected;
    for (const Box& box : window.Boxes(boxesBefore)) boxes.emplace_back(box.title, box.text);
    if (c.asked) expected.emplace_back(u"提示", kAsk);
    if (c.title != nullptr) expected.emplace_back(c.title, c.text);
    EXPECT_EQ(boxes, expected);
    EXPECT_EQ(engine.GroupOwner("gt"), c.ownerAfter);
    const bool followed = c.result == OwnerTransferResult::kDone;
    EXPECT_EQ(mirror_.Changes().size(), changesBefore + (followed ? 1 : 0));
    if (followed) {
      EXPECT_TRUE(LastChangeFollowed("TransferGroupOwner"));
    }
  }
}

TEST_F(GroupServiceTest, HostGroupsReloadOn3181AndOnTips) {
  ASSERT_EQ(engine.CreateGroup("10002", "G", {"10001"}, "g1"), "g1");
  host_.SignOut();  // the host cannot list its groups at sign-in
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([&] { return tools->IsJoinedGroup(u"g1"); }));
  EXPECT_EQ(tools->FindGroup(u"g1")->cloud_group_id, -1);
  EXPECT_TRUE(traces.Contains("获取已加入群组列表 失败!!! host"));

  // A group only the host knows, and a changed cloud space: 3181.
  host_.OnGroupCreated(u"cloud_only", u"云", u"10001", {u"10001"});
  host_.SignIn(10001);
  ClearSeen();
  ASSERT_EQ(engine.SendCustom("10002", 2, "g1", R"({"msgType":1,"data":{"subType":1}})"), 0);
  ASSERT_TRUE(PumpUntil([&] { return CountSeen(platform::msg::kReloadGroupsFromHost) >= 1; }));
  tools->LoadHostGroups();  // as the window does on 3181
  EXPECT_EQ(tools->FindGroup(u"g1")->cloud_group_id, CloudIdOf("g1"));
  EXPECT_EQ(tools->FindGroup(u"g1")->name, u"G");
  ASSERT_TRUE(tools->FindGroup(u"cloud_only"));
  EXPECT_EQ(tools->FindGroup(u"cloud_only")->name, u"云");
  EXPECT_EQ(tools->GetCurrenConvType(u"cloud_only"), 2u);
  DrainNow();
  EXPECT_GE(CountSeen(platform::msg::kGroupListChanged), 1u);

  // Another member's change: the tips callback reads the host already
  // holding the group the engine reports.
  ASSERT_FALSE(engine.CreateGroup("10003", "N", {"10001"}, "g2").empty());
  ASSERT_TRUE(PumpUntil([&] {
    auto group = tools->FindGroup(u"g2");
    return group && group->cloud_group_id != -1;
  }));
  EXPECT_EQ(tools->FindGroup(u"g2")->cloud_group_id, CloudIdOf("g2"));
}

TEST_F(GroupServiceTest, ConversationImagesComeThroughTheHostIntoTheFaceCache) {
  const std::string pictures = testing::TempDir() + "service_group_pictures/";
  std::filesystem::create_directories(pictures);
  for (const char* name : {"friend.png", "stranger.jpg", "group.png"}) {
    std::ofstream(pictures + name) << name;
  }
  engine.UpdateProfile("10002", {"王工", pictures + "friend.png", 2, ""});
  host::local::LocalAccount stranger;
  stranger.id = 10003;
  stranger.displayName = u"赵工";
  stranger.avatarPath = platform::Utf8ToUtf16(pictures + "stranger.jpg");
  host_.AddAccount(stranger);
  ASSERT_EQ(engine.CreateGroup("10001", "G", {"10002"}, "gp"), "gp");
  ASSERT_EQ(engine.CreateGroup("10001", "Plain", {"10002"}, "gq"), "gq");
  ASSERT_TRUE(SignIn());
  Json::Value face;
  face["group_modify_info_param_group_id"] = "gp";
  face["group_modify_info_param_face_url"] = pictures + "group.png";
  ASSERT_EQ(TIMGroupModifyGroupInfo(face.toStyledString().c_str(), nullptr, nullptr), 0);
  ASSERT_TRUE(PumpUntil([&] {
    auto group = tools->FindGroup(u"gp");
    return group && !group->face_url.empty() && tools->FindGroup(u"gq");
  }));

  const WString faces = platform::DataFolders::Instance().GetFacePath();
  const struct {
    const char* name;
    uint32_t type;
    const char16_t* id;
    bool downloadFails;
    const char* picture;  // expected cached copy of this picture; "" = default
    WString displayName;
  } cases[] = {
      {"friend, download fails", 1, u"10002", true, "", u"王工"},
      {"friend", 1, u"10002", false, "friend.png", u"王工"},
      {"friend, cached", 1, u"10002", false, "friend.png", u"王工"},
      {"stranger from the host", 1, u"10003", false, "stranger.jpg", u"赵工"},
      {"unknown person", 1, u"20000", false, "", u"20000"},
      {"group", 2, u"gp", false, "group.png", u"G"},
      {"group without picture", 2, u"gq", false, "", u"Plain"},
      {"unknown group", 2, u"gx", false, "", u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host_.ClearCalls();
    ClearSeen();
    if (c.downloadFails) host_.FailOperation("DownloadPicture");
    const bool cached = std::string(c.name).find("cached") != std::string::npos;
    const WString fallback =
        c.type == 1 ? u"..\\img\\PersonDefaultImg.png" : u"..\\img\\GroupDefaultImg.png";
    // The window never waits for a download: the default picture now, the
    // fetch in the background, 3192 with the id when it has arrived.
    WString image, name;
    tools->GetConvImage(c.type, c.id, image, name);
    EXPECT_EQ(name, c.displayName);
    if (!cached) {
      EXPECT_EQ(image, fallback);
    }
    platform::ModuleWorkers::Instance().WaitIdle();
    host_.FailOperation("DownloadPicture", false);
    DrainNow();
    const auto calls = host_.CallNames();
    const size_t downloads = std::count(calls.begin(), calls.end(), "DownloadPicture");
    const std::vector<Seen> arrived = SeenOf(platform::msg::kConversationLogoChanged);
    if (*c.picture == '\0') {
      EXPECT_TRUE(arrived.empty());
      EXPECT_TRUE(!c.downloadFails || traces.Contains("下载图片失败!!!"));
      continue;
    }
    EXPECT_EQ(downloads, cached ? 0u : 1u);
    if (!cached) {
      ASSERT_EQ(arrived.size(), 1u);
      EXPECT_EQ(arrived[0].first, c.id);
      tools->GetConvImage(c.type, c.id, image, name);
    }
    EXPECT_EQ(image.rfind(faces, 0), 0u);
    std::ifstream stored(platform::Utf16ToUtf8(image));
    std::string content((std::istreambuf_iterator<char>(stored)), {});
    EXPECT_EQ(content, c.picture);
  }
}

}  // namespace
}  // namespace service_test
