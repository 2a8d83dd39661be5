// Every way of reaching the host refuses the same way: a missing service is
// traced with "指针为空" and the caller's tag, a signed-out host with "没有登陆"
// for group and shared-session actions, and nothing further is called or shown.

#include <algorithm>
#include <functional>
#include <memory>

#include "host/account_search.h"
#include "host/drawing_sync.h"
#include "host/feature_use.h"
#include "host/group_actions.h"
#include "host/owner_transfer.h"
#include "host/shared_session.h"
#include "host/startup_registration.h"
#include "host/upload_worker.h"
#include "host_test_support.h"

namespace host::testing {
namespace {

enum class Needs { kCloud, kApp, kBoth };

struct CallerCase {
  const char* name;
  const char* tag;
  Needs needs;
  bool gated;  // group and shared-session actions check IsHostLoggedIn
  // The invitation's status and the registration have no failure to report.
  bool succeedsWithNullHost;
  // Runs the caller; true when it reports success.
  std::function<bool(UserPrompt&)> run;
};

bool Group(GroupAction action, UserPrompt& prompt, const char* tag) {
  GroupActionRequest request;
  request.action = action;
  request.imGroupId = u"group_1001";
  request.members = {CloudGroupMember{3, u"3", u"Cai", u"", 0}};
  request.newName = u"Renamed";
  bool followedUp = false;
  const auto result =
      RunGroupAction(request, tag, prompt, [&](const GroupDetail&) { followedUp = true; });
  EXPECT_EQ(followedUp, result == GroupActionResult::kDone);
  return result == GroupActionResult::kDone;
}

bool Upload() {
  platform::QueuedWindow window;
  auto task = std::make_unique<UploadTask>();
  task->notify = window.handle();
  task->localPath = u"/nonexistent/a.dwg";
  task->groupId = 1001;
  StartUploadWorker(std::move(task)).join();
  auto posted = window.Take();
  return posted && posted->wParam == 1;
}

void PrintTo(const CallerCase& c, std::ostream* os) {
  *os << c.name;
}

const std::vector<CallerCase>& Cases() {
  static const std::vector<CallerCase> cases = {
      {"RemoveMembers", "DeleteGroupMember::DelMemberFromGroup  error ", Needs::kCloud, true, false,
       [](UserPrompt& p) {
         return Group(GroupAction::kRemoveMembers, p,
                      "DeleteGroupMember::DelMemberFromGroup  error ");
       }},
      {"Leave", "GroupFunction::LeaveGroup  error ", Needs::kCloud, true, false,
       [](UserPrompt& p) {
         return Group(GroupAction::kLeave, p, "GroupFunction::LeaveGroup  error ");
       }},
      {"Disband", "DisbandGroup::DelMemberFromGroup  error ", Needs::kCloud, true, false,
       [](UserPrompt& p) {
         return Group(GroupAction::kDisband, p, "DisbandGroup::DelMemberFromGroup  error ");
       }},
      {"AddMembers", "AddGrouMember::AddMemberToGroup  error ", Needs::kCloud, true, false,
       [](UserPrompt& p) {
         return Group(GroupAction::kAddMembers, p, "AddGrouMember::AddMemberToGroup  error ");
       }},
      {"Rename", "GroupFunction::ModifyGroupName  error ", Needs::kCloud, true, false,
       [](UserPrompt& p) {
         return Group(GroupAction::kRename, p, "GroupFunction::ModifyGroupName  error ");
       }},
      {"TransferOwner", "TransferManage::TransferGroupManage  error ", Needs::kCloud, true, false,
       [](UserPrompt& p) {
         return TransferGroupOwnership({1001, 2, u"Bob"},
                                       "TransferManage::TransferGroupManage  error ", p,
                                       nullptr) == OwnerTransferResult::kDone;
       }},
      {"Search", "AddFriendWnd::Search  error ", Needs::kCloud, false, false,
       [](UserPrompt&) {
         AccountInfo info;
         return SearchAccountByText(u"bob@example.com", AccountKind::kEmail, info,
                                    "AddFriendWnd::Search  error ") == AccountSearchResult::kFound;
       }},
      {"Invite", "AddFriendWnd::Invite  error ", Needs::kCloud, false, true,
       [](UserPrompt&) {
         AccountInfo info;
         info.relation = 2;
         return ActOnFoundAccount(u"new@example.com", AccountKind::kEmail, info,
                                  "AddFriendWnd::Invite  error ",
                                  nullptr) == AccountActionResult::kInvited;
       }},
      {"Upload", "UploadSpaceFile  error ", Needs::kCloud, false, false,
       [](UserPrompt&) { return Upload(); }},
      {"Logout", "LogOutIm  error ", Needs::kBoth, false, false,
       [](UserPrompt&) { return LeaveSharedSessionAtLogout(); }},
      {"DrawingSync", "HandleReceivedDrawingSync  error ", Needs::kApp, false, false,
       [](UserPrompt&) {
         return HandleReceivedDrawingSync({u"group_1001", 2, 6, u"2", u"x"}) !=
                DrawingSyncRoute::kIgnored;
       }},
      {"Startup", "CChatTools::Init  error ", Needs::kApp, false, true,
       [](UserPrompt&) { return RegisterModuleCallbacks(nullptr, nullptr); }},
  };
  return cases;
}

class CallerPaths : public LocalHostTest, public ::testing::WithParamInterface<CallerCase> {};

TEST_P(CallerPaths, MissingServiceIsTracedWithTheTagAndNothingIsCalled) {
  const CallerCase& c = GetParam();
  // Each missing service alone, then both.
  const std::vector<std::pair<bool, bool>> missing = {{false, true}, {true, false}, {false, false}};
  for (auto [cloud, app] : missing) {
    const bool lacking = (c.needs != Needs::kApp && !cloud) || (c.needs != Needs::kCloud && !app);
    if (!lacking) continue;
    host_.SetServicesAvailable(cloud, app);
    host_.ClearCalls();
    trace_.Clear();
    EXPECT_FALSE(c.run(prompt_)) << c.name;
    EXPECT_EQ(trace_.Count(std::string("指针为空") + c.tag), 1u) << c.name;
    EXPECT_TRUE(host_.CallNames().empty()) << c.name;
    EXPECT_TRUE(prompt_.shown.empty()) << c.name;
  }
}

TEST_P(CallerPaths, SignedOutHostStopsOnlyGroupAndSessionActionsAtTheGate) {
  const CallerCase& c = GetParam();
  host_.SignOut();
  host_.ClearCalls();
  const bool succeeded = c.run(prompt_);
  if (c.gated) {
    EXPECT_FALSE(succeeded);
    EXPECT_EQ(trace_.Count(std::string("没有登陆") + c.tag), 1u);
    EXPECT_EQ(host_.CallNames(), std::vector<std::string>{"IsHostLoggedIn"});
    EXPECT_TRUE(prompt_.shown.empty());
  } else {
    // Account, upload, log-out and sync paths are not gated: the host decides.
    EXPECT_EQ(trace_.Count("没有登陆"), 0u);
    const auto calls = host_.CallNames();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "IsHostLoggedIn"), 0);
  }
}

TEST_P(CallerPaths, NullHostKeepsEveryCallerOnItsFailurePath) {
  const CallerCase& c = GetParam();
  host_.Uninstall();
  EXPECT_EQ(c.run(prompt_), c.succeedsWithNullHost);
  EXPECT_EQ(trace_.Count("指针为空"), 0u) << "the null host hands out services";
  EXPECT_EQ(trace_.Count(std::string("没有登陆") + c.tag), c.gated ? 1u : 0u);
  EXPECT_TRUE(host_.CallNames().empty());
  // Only the search shows something, and that in the dialog's own line.
  EXPECT_TRUE(prompt_.shown.empty());
}

INSTANTIATE_TEST_SUITE_P(AllCallers, CallerPaths, ::testing::ValuesIn(Cases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(HostRuntime, NullHostIsTheDefaultAndInstallSwapsIt) {
  HostSystem* null_host = HostSystem::instance();
  ASSERT_NE(null_host, nullptr);
  EXPECT_FALSE(null_host->GetCloudService()->IsHostLoggedIn());
  EXPECT_FALSE(null_host->GetAppService()->IsInSharedSession());
  EXPECT_EQ(std::u16string_view(null_host->GetAppService()->GetSessionKey()), u"");

  local::LocalHost local("/nonexistent");
  EXPECT_EQ(HostSystem::Install(&local), nullptr);
  EXPECT_EQ(HostSystem::instance(), &local);
  EXPECT_EQ(HostSystem::Install(nullptr), &local);
  EXPECT_EQ(HostSystem::instance(), null_host);
}

}  // namespace
}  // namespace host::testing
