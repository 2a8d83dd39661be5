// Groups as rooms with third-party clients in them: creation and
// invitation (then and later), messages and files both ways, members
// removed, renaming, the owner handed on, quitting, history, catching up
// at sign-in (also when the archive forgot where we were) and disbanding.
#include <filesystem>

#include "tests/xmpp/xmpp_fixture.h"

namespace xmpp_test {
namespace {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Record;
using imsdk_test::Tag;
using imsdk_test::Write;

std::string RoomOf(const std::string& group) {
  return group + "@conference.localhost";
}

class XmppGroupTest : public XmppTest {
 protected:
  Record CreateGroup(const std::string& id, const std::vector<std::string>& members) {
    Json::Value param;
    param["create_group_param_group_name"] = "Room " + id;
    param["create_group_param_group_id"] = id;
    for (const auto& m : members) {
      Json::Value member;
      member["group_member_info_identifier"] = m;
      param["create_group_param_group_member_array"].append(member);
    }
    const std::string tag = NextTag("create " + id);
    EXPECT_EQ(TIMGroupCreate(Write(param).c_str(), OnResult, Tag(tag)), TIM_SUCC);
    return rec.Result(tag);
  }
  // The peer waits for its invitation and enters the room.
  void Enter(PeerProcess& peer, const std::string& user, const std::string& group) {
    ASSERT_FALSE(peer.WaitFor([&](const Json::Value& e) {
                       return e["event"] == "message" &&
                              e["xml"].asString().find("<invite") != std::string::npos &&
                              e["from"].asString() == RoomOf(group);
                     })
                     .isNull())
        << user << " got no invitation";
    Json::Value join;
    join["cmd"] = "raw";
    join["data"] = "<presence to='" + RoomOf(group) + "/" + user +
                   "'><x xmlns='http://jabber.org/protocol/muc'><history maxstanzas='0'/></x>"
                   "</presence>";
    peer.Command(join);
    ASSERT_FALSE(peer.WaitFor([&](const Json::Value& e) {
                       return e["event"] == "presence" && e["type"] == "available" &&
                              e["from_full"].asString() == RoomOf(group) + "/" + user;
                     })
                     .isNull())
        << user << " could not enter";
  }
  void SayInRoom(PeerProcess& peer, const std::string& group, const std::string& text) {
    Json::Value send;
    send["cmd"] = "send";
    send["to"] = RoomOf(group);
    send["type"] = "groupchat";
    send["body"] = text;
    peer.Command(send);
  }
  // Said while we are away: waits until the room has archived it (the
  // peer sees its own message come back).
  void SayWhileAway(PeerProcess& peer, const std::string& group, const std::string& text) {
    SayInRoom(peer, group, text);
    ASSERT_FALSE(peer.WaitFor([&](const Json::Value& e) {
                       return e["event"] == "message" && e["body"] == text;
                     })
                     .isNull());
  }
  // How often each text came to the new-message callback so far.
  std::map<std::string, int> TextsReceived() {
    std::map<std::string, int> times;
    for (const auto& r : rec.WaitFor("new_msg", rec.Count("new_msg"))) {
      for (const auto& m : Parse(r.json)) {
        ++times[m["message_elem_array"][0]["text_elem_content"].asString()];
      }
    }
    return times;
  }
  Json::Value WaitForGroupText(const std::string& group, const std::string& text) {
    return WaitForRecord("new_msg", [&](const Json::Value& m) {
      return m["message_conv_type"] == kTIMConv_Group && m["message_conv_id"] == group &&
             m["message_elem_array"][0]["text_elem_content"] == text;
    });
  }
  Json::Value WaitForTip(int type, const std::string& user) {
    return WaitForRecord("group_tips", [&](const Json::Value& t) {
      if (t["group_tips_elem_tip_type"] != type) return false;
      for (const auto& u : t["group_tips_elem_user_array"]) {
        if (u == user) return true;
      }
      for (const auto& c : t["group_tips_elem_group_change_info_array"]) {
        if (c["group_tips_group_change_info_value"] == user) return true;
      }
      return false;
    });
  }
  Record Request(const std::string& what, const std::function<int(void*)>& call) {
    const std::string tag = NextTag(what);
    EXPECT_EQ(call(Tag(tag)), TIM_SUCC) << what;
    return rec.Result(tag);
  }
  Json::Value JoinedGroups() {
    return Parse(Request("groups", [](void* tag) {
                   return TIMGroupGetJoinedGroupList(OnResult, tag);
                 }).json);
  }
  Record SignOut() {
    return Request("logout", [](void* tag) { return TIMLogout(OnResult, tag); });
  }
};

TEST_F(XmppGroupTest, ARoomWithAPlainClientCarriesMessagesMembersAndTheOwner) {
  ASSERT_EQ(SignIn("ivan").code, TIM_SUCC);
  auto judy = StartPeer("judy");
  Record created = CreateGroup("plan-review", {"judy", "kate"});
  ASSERT_EQ(created.code, TIM_SUCC) << created.json;
  EXPECT_EQ(Parse(created.json)["create_group_result_groupid"], "plan-review");
  EXPECT_EQ(CreateGroup("plan-review", {}).code, TIM_ERR_GROUP_EXISTS);
  Enter(*judy, "judy", "plan-review");
  // Both invitations became memberships; the invited peer is told by tips.
  Json::Value tip = WaitForTip(kTIMGroupTip_Invite, "kate");
  ASSERT_FALSE(tip.isNull());
  EXPECT_EQ(tip["group_tips_elem_op_user"], "ivan");
  EXPECT_EQ(tip["group_tips_elem_group_name"], "Room plan-review");

  Record sent = Request("send", [](void* tag) {
    return TIMMsgSendNewMsg("plan-review", kTIMConv_Group,
                            imsdk_test::TextMsg("drawing 7 is ready").c_str(), OnResult, tag);
  });
  ASSERT_EQ(sent.code, TIM_SUCC) << sent.json;
  EXPECT_FALSE(judy->WaitFor([](const Json::Value& e) {
                     return e["event"] == "message" && e["type"] == "groupchat" &&
                            e["body"] == "drawing 7 is ready";
                   })
                   .isNull());
  SayInRoom(*judy, "plan-review", "looks good");
  Json::Value in = WaitForGroupText("plan-review", "looks good");
  ASSERT_FALSE(in.isNull());
  EXPECT_EQ(in["message_sender"], "judy");
  EXPECT_FALSE(in["message_is_from_self"].asBool());

  Record members = Request("members", [](void* tag) {
    return TIMGroupGetMemberInfoList(
        R"({"group_get_members_info_list_param_group_id":"plan-review"})", OnResult, tag);
  });
  ASSERT_EQ(members.code, TIM_SUCC) << members.json;
  std::map<std::string, int> roles;
  const Json::Value listed = Parse(members.json);
  for (const auto& m : listed["group_get_member_info_list_result_info_array"]) {
    roles[m["group_member_info_identifier"].asString()] =
        m["group_member_info_member_role"].asInt();
  }
  EXPECT_EQ(roles, (std::map<std::string, int>{{"ivan", 3}, {"judy", 1}, {"kate", 1}}));

  Record removed = Request("remove", [](void* tag) {
    return TIMGroupDeleteMember(
        R"({"group_delete_member_param_group_id":"plan-review",
            "group_delete_member_param_identifier_array":["kate","nobody"]})",
        OnResult, tag);
  });
  ASSERT_EQ(removed.code, TIM_SUCC) << removed.json;
  Json::Value outcome = Parse(removed.json);
  EXPECT_EQ(outcome[0]["group_delete_member_result_result"], 1);
  EXPECT_EQ(outcome[1]["group_delete_member_result_result"], 0);
  tip = WaitForTip(kTIMGroupTip_Kick, "kate");
  ASSERT_FALSE(tip.isNull());
  EXPECT_EQ(tip["group_tips_elem_op_user"], "ivan");

  Record handed = Request("owner", [](void* tag) {
    return TIMGroupModifyGroupInfo(
        R"({"group_modify_info_param_group_id":"plan-review","group_modify_info_param_owner":"judy"})",
        OnResult, tag);
  });
  ASSERT_EQ(handed.code, TIM_SUCC) << handed.json;
  tip = WaitForTip(kTIMGroupTip_InfoChange, "judy");
  ASSERT_FALSE(tip.isNull());
  EXPECT_EQ(tip["group_tips_elem_group_change_info_array"][0]["group_tips_group_change_info_flag"],
            5);
  EXPECT_FALSE(judy->WaitFor([](const Json::Value& e) {
                     return e["event"] == "presence" &&
                            e["xml"].asString().find("affiliation=\"owner\"") !=
                                std::string::npos &&
                            e["from_full"].asString() == RoomOf("plan-review") + "/judy";
                   })
                   .isNull());
  // No longer the owner: the room refuses what only owners may do.
  EXPECT_EQ(
      Request("disband", [](void* tag) { return TIMGroupDelete("plan-review", OnResult, tag); })
          .code,
      TIM_ERR_GROUP_PERMISSION);

  Json::Value list = JoinedGroups();
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0]["group_base_info_owner_identifier"], "judy");
  EXPECT_EQ(list[0]["group_base_info_group_name"], "Room plan-review");

  // The room's archive gives the conversation back, newest first.
  Json::Value history = History("plan-review", 10, {}, kTIMConv_Group);
  ASSERT_EQ(history.size(), 2u);
  EXPECT_EQ(history[0]["message_elem_array"][0]["text_elem_content"], "looks good");
  EXPECT_EQ(history[1]["message_unique_id"], Parse(sent.json)["message_unique_id"]);
  EXPECT_TRUE(history[1]["message_is_from_self"].asBool());
}

TEST_F(XmppGroupTest, WhatWasSaidWhileAwayIsCaughtUpOnceAtSignInAndDisbandingEndsTheGroup) {
  ASSERT_EQ(SignIn("lena").code, TIM_SUCC);
  auto mike = StartPeer("mike");
  ASSERT_EQ(CreateGroup("site-visit", {"mike"}).code, TIM_SUCC);
  Enter(*mike, "mike", "site-visit");
  SayInRoom(*mike, "site-visit", "before");
  ASSERT_FALSE(WaitForGroupText("site-visit", "before").isNull());
  ASSERT_EQ(SignOut().code, TIM_SUCC);

  SayWhileAway(*mike, "site-visit", "while away");
  rec.Clear();
  ASSERT_EQ(SignIn("lena").code, TIM_SUCC);
  ASSERT_EQ(JoinedGroups().size(), 1u);
  ASSERT_FALSE(WaitForGroupText("site-visit", "while away").isNull());
  SayInRoom(*mike, "site-visit", "after");
  ASSERT_FALSE(WaitForGroupText("site-visit", "after").isNull());
  EXPECT_EQ(TextsReceived().count("before"), 0u) << "a message seen before came again";

  // The room's archive forgot the last message seen there: what was missed
  // arrives by time, and nothing twice.
  ASSERT_EQ(SignOut().code, TIM_SUCC);
  ASSERT_TRUE(ChangeStoredSetting("lena", "room_last_archive_id:site-visit", "forgotten"));
  SayWhileAway(*mike, "site-visit", "while forgotten");
  rec.Clear();
  ASSERT_EQ(SignIn("lena").code, TIM_SUCC);
  ASSERT_FALSE(WaitForGroupText("site-visit", "while forgotten").isNull());
  SayInRoom(*mike, "site-visit", "last");
  ASSERT_FALSE(WaitForGroupText("site-visit", "last").isNull());
  EXPECT_EQ(TextsReceived(), (std::map<std::string, int>{{"while forgotten", 1}, {"last", 1}}));

  ASSERT_EQ(
      Request("disband", [](void* tag) { return TIMGroupDelete("site-visit", OnResult, tag); })
          .code,
      TIM_SUCC);
  Json::Value report = WaitForRecord("new_msg", [](const Json::Value& m) {
    return m["message_elem_array"][0]["elem_type"] == kTIMElem_GroupReport;
  });
  ASSERT_FALSE(report.isNull());
  EXPECT_EQ(report["message_elem_array"][0]["group_report_elem_report_type"],
            kTIMGroupReport_Disband);
  EXPECT_FALSE(mike->WaitFor([](const Json::Value& e) {
                     return e["event"] == "presence" && e["type"] == "unavailable" &&
                            e["xml"].asString().find("<destroy") != std::string::npos;
                   })
                   .isNull());
  EXPECT_EQ(JoinedGroups().size(), 0u);
}

TEST_F(XmppGroupTest, LaterMembersRenamingFilesAndQuitting) {
  const std::string dir = imsdk_test::Scratch("xmpp-group-files-" + std::to_string(getpid()));
  std::filesystem::remove_all(dir);
  ASSERT_EQ(SignIn("uma").code, TIM_SUCC);
  auto vera = StartPeer("vera");
  auto walt = StartPeer("walt");
  ASSERT_EQ(CreateGroup("survey", {"vera"}).code, TIM_SUCC);
  Enter(*vera, "vera", "survey");

  // Invited after the room was made: a member already there is not again.
  Record invited = Request("invite", [](void* tag) {
    return TIMGroupInviteMember(
        R"({"group_invite_member_param_group_id":"survey",
            "group_invite_member_param_identifier_array":["walt","vera"]})",
        OnResult, tag);
  });
  ASSERT_EQ(invited.code, TIM_SUCC) << invited.json;
  Json::Value outcome = Parse(invited.json);
  EXPECT_EQ(outcome[0]["group_invite_member_result_result"], 1);
  EXPECT_EQ(outcome[1]["group_invite_member_result_result"], 2);
  Enter(*walt, "walt", "survey");
  Json::Value tip = WaitForTip(kTIMGroupTip_Invite, "walt");
  ASSERT_FALSE(tip.isNull());
  EXPECT_EQ(tip["group_tips_elem_op_user"], "uma");

  Record renamed = Request("rename", [](void* tag) {
    return TIMGroupModifyGroupInfo(
        R"({"group_modify_info_param_group_id":"survey","group_modify_info_param_group_name":"Survey, east wing"})",
        OnResult, tag);
  });
  ASSERT_EQ(renamed.code, TIM_SUCC) << renamed.json;
  tip = WaitForTip(kTIMGroupTip_InfoChange, "Survey, east wing");
  ASSERT_FALSE(tip.isNull());
  EXPECT_EQ(tip["group_tips_elem_group_change_info_array"][0]["group_tips_group_change_info_flag"],
            1);
  EXPECT_EQ(JoinedGroups()[0]["group_base_info_group_name"], "Survey, east wing");
  // The peers' room tells them (status 104: the configuration changed).
  EXPECT_FALSE(walt->WaitFor([](const Json::Value& e) {
                     return e["event"] == "message" &&
                            e["xml"].asString().find("code=\"104\"") != std::string::npos;
                   })
                   .isNull());

  // A file and a picture into the room; every member fetches the same bytes.
  const std::string drawing = Bytes(90 * 1024, 5), picture = Bytes(30 * 1024, 6);
  WriteFile(dir + "/section.dwg", drawing);
  WriteFile(dir + "/facade.png", picture);
  const Json::Value msg = FileAndPictureMessage(dir + "/section.dwg", dir + "/facade.png");
  Record sent = Request("send files", [&msg](void* tag) {
    return TIMMsgSendNewMsg("survey", kTIMConv_Group, Write(msg).c_str(), OnResult, tag);
  });
  ASSERT_EQ(sent.code, TIM_SUCC) << sent.json;
  Json::Value out = Parse(sent.json)["message_elem_array"];
  const std::string file_url = out[0]["file_elem_url"].asString();
  const std::string picture_url = out[1]["image_elem_orig_url"].asString();
  Json::Value at_walt = walt->WaitFor([](const Json::Value& e) {
    return e["event"] == "message" && e["type"] == "groupchat" &&
           e["body"].asString().find("http") == 0;
  });
  ASSERT_FALSE(at_walt.isNull());
  EXPECT_EQ(at_walt["body"].asString(), file_url + "\n" + picture_url);
  EXPECT_TRUE(Fetch(*walt, file_url, dir + "/walt-section.dwg") == drawing);
  EXPECT_TRUE(Fetch(*walt, picture_url, dir + "/walt-facade.png") == picture);
  // A member's picture into the room reaches us as a picture we can fetch.
  const std::string photo = Bytes(50 * 1024, 7);
  WriteFile(dir + "/site.jpg", photo);
  Json::Value upload;
  upload["cmd"] = "upload_send";
  upload["to"] = RoomOf("survey");
  upload["type"] = "groupchat";
  upload["upload"] = "upload.localhost";
  upload["path"] = dir + "/site.jpg";
  vera->Command(upload);
  Json::Value image = WaitForRecord("new_msg", [](const Json::Value& m) {
    return m["message_conv_id"] == "survey" &&
           m["message_elem_array"][0]["elem_type"] == kTIMElem_Image;
  });
  ASSERT_FALSE(image.isNull());
  EXPECT_EQ(image["message_sender"], "vera");
  Record got = Download(image["message_elem_array"][0]["image_elem_orig_id"].asString(),
                        dir + "/got-site.jpg");
  ASSERT_EQ(got.code, TIM_SUCC) << got.json;
  EXPECT_TRUE(ReadFile(dir + "/got-site.jpg") == photo);

  // The owner cannot just leave; once the room is handed on, it can.
  auto quit = [](void* tag) { return TIMGroupQuit("survey", OnResult, tag); };
  EXPECT_EQ(Request("quit as owner", quit).code, TIM_ERR_GROUP_PERMISSION);
  ASSERT_EQ(
      Request(
          "owner",
          [](void* tag) {
            return TIMGroupModifyGroupInfo(
                R"({"group_modify_info_param_group_id":"survey","group_modify_info_param_owner":"vera"})",
                OnResult, tag);
          })
          .code,
      TIM_SUCC);
  ASSERT_EQ(Request("quit", quit).code, TIM_SUCC);
  EXPECT_FALSE(vera->WaitFor([](const Json::Value& e) {
                     return e["event"] == "presence" &&
                            e["from_full"].asString() == RoomOf("survey") + "/uma" &&
                            e["xml"].asString().find("affiliation=\"none\"") != std::string::npos;
                   })
                   .isNull());
  EXPECT_EQ(JoinedGroups().size(), 0u);
  EXPECT_EQ(Request("history",
                    [](void* tag) {
                      return TIMMsgGetMsgList("survey", kTIMConv_Group,
                                              R"({"msg_getmsglist_param_count":5})", OnResult, tag);
                    })
                .code,
            TIM_ERR_NOT_GROUP_MEMBER);
  // Gone for good: the next sign-in does not enter it again.
  ASSERT_EQ(SignOut().code, TIM_SUCC);
  ASSERT_EQ(SignIn("uma").code, TIM_SUCC);
  EXPECT_EQ(JoinedGroups().size(), 0u);

  // Invited again while away, by a user who has written to us before: the
  // sign-in catches up from the archive, which holds the invitation.
  vera->Send("uma", "come back?");
  ASSERT_FALSE(WaitForRecord("new_msg", [](const Json::Value& m) {
                 return m["message_elem_array"][0]["text_elem_content"] == "come back?";
               }).isNull());
  ASSERT_EQ(SignOut().code, TIM_SUCC);
  Json::Value invite;
  invite["cmd"] = "raw";
  invite["data"] = "<message to='" + RoomOf("survey") +
                   "'><x xmlns='http://jabber.org/protocol/muc#user'><invite "
                   "to='uma@localhost'/></x></message>";
  vera->Command(invite);
  SayWhileAway(*vera, "survey", "invited uma again");  // the room has handled the invitation
  rec.Clear();
  ASSERT_EQ(SignIn("uma").code, TIM_SUCC);
  EXPECT_FALSE(WaitForTip(kTIMGroupTip_Invite, "uma").isNull());
  EXPECT_EQ(JoinedGroups().size(), 1u);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace xmpp_test
