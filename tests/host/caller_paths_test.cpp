// Every way of reaching the host refuses the same way: a missing service is
// traced with "指针为空" and the caller's tag, a signed-out host with "没有登陆"
// for group and shared-session actions, and nothing further is called or shown.

#include <algorithm>
#include <functional>
#include <memory>

#include "host/account_search.h"
#include "host/drawing_sync.h"
#include "host/group_actions.h"
#include "host/owner_transfer.h"
#include "host/shared_session.h"
#include "host/startup_registration.h"
#include "host/upload_worker.h"
#include "host_test_support.h"
#include "platform/module_workers.h"

namespace host::testing {
namespace {

enum class Needs { kCloud, kApp, kBoth };
using Caller = std::function<bool(UserPrompt&, const char* tag)>;  // true on success

struct CallerCase {
  const char* name;
  const char* tag;
  Needs needs;
  bool gated;                 // checks IsHostLoggedIn
  bool succeedsWithNullHost;  // the invitation and the registration report no failure
  Caller run;
};

Caller Group(GroupAction action) {
  return [action](UserPrompt& prompt, const char* tag) {
    GroupActionRequest request{action, u"group_1001", {{3, u"3", u"Cai", u"", 0}}, u"Renamed"};
    bool followedUp = false;
    const bool done = RunGroupAction(request, tag, prompt, [&](const GroupDetail&) {
                        followedUp = true;
                      }) == GroupActionResult::kDone;
    EXPECT_EQ(followedUp, done);
    return done;
  };
}

bool Upload(UserPrompt&, const char*) {
  platform::QueuedWindow window;
  StartUploadWorker(
      std::make_unique<UploadTask>(UploadTask{window.handle(), u"/none/a.dwg", 1001, 0, nullptr}));
  platform::ModuleWorkers::Instance().WaitIdle();
  auto posted = window.Take();
  return posted && posted->wParam == 1;
}

void PrintTo(const CallerCase& c, std::ostream* os) {
  *os << c.name;
}

const std::vector<CallerCase>& Cases() {
  static const std::vector<CallerCase> cases = {
      {"RemoveMembers", "DeleteGroupMember::DelMemberFromGroup  error ", Needs::kCloud, true, false,
       Group(GroupAction::kRemoveMembers)},
      {"Leave", "GroupFunction::LeaveGroup  error ", Needs::kCloud, true, false,
       Group(GroupAction::kLeave)},
      {"Disband", "DisbandGroup::DelMemberFromGroup  error ", Needs::kCloud, true, false,
       Group(GroupAction::kDisband)},
      {"AddMembers", "AddGrouMember::AddMemberToGroup  error ", Needs::kCloud, true, false,
       Group(GroupAction::kAddMembers)},
      {"Rename", "GroupFunction::ModifyGroupName  error ", Needs::kCloud, true, false,
       Group(GroupAction::kRename)},
      {"TransferOwner", "TransferManage::TransferGroupManage  error ", Needs::kCloud, true, false,
       [](UserPrompt& p, const char* tag) {
         return TransferGroupOwnership({1001, 2, u"Bob"}, tag, p, nullptr) ==
                OwnerTransferResult::kDone;
       }},
      {"Search", "AddFriendWnd::Search  error ", Needs::kCloud, false, false,
       [](UserPrompt&, const char* tag) {
         AccountInfo info;
         return SearchAccountByText(u"bob@example.com", AccountKind::kEmail, info, tag) ==
                AccountSearchResult::kFound;
       }},
      {"Invite", "AddFriendWnd::Invite  error ", Needs::kCloud, false, true,
       [](UserPrompt&, const char* tag) {
         AccountInfo info;
         info.relation = 2;
         return ActOnFoundAccount(u"new@example.com", AccountKind::kEmail, info, tag, nullptr) ==
                AccountActionResult::kInvited;
       }},
      {"Upload", "UploadSpaceFile  error ", Needs::kCloud, false, false, Upload},
      {"Logout", "LogOutIm  error ", Needs::kBoth, false, false,
       [](UserPrompt&, const char*) { return LeaveSharedSessionAtLogout(); }},
      {"DrawingSync", "HandleReceivedDrawingSync  error ", Needs::kApp, false, false,
       [](UserPrompt&, const char*) {
         return HandleReceivedDrawingSync({u"group_1001", 2, 6, u"2", u"x"}) !=
                DrawingSyncRoute::kIgnored;
       }},
      {"Startup", "CChatTools::Init  error ", Needs::kApp, false, true,
       [](UserPrompt&, const char*) { return RegisterModuleCallbacks(nullptr, nullptr); }},
  };
  return cases;
}

class CallerPaths : public LocalHostTest, public ::testing::WithParamInterface<CallerCase> {};

TEST_P(CallerPaths, MissingServiceIsTracedWithTheTagAndNothingIsCalled) {
  const CallerCase& c = GetParam();
  for (auto [cloud, app] : {std::pair{false, true}, {true, false}, {false, false}}) {
    if ((c.needs == Needs::kApp || cloud) && (c.needs == Needs::kCloud || app)) continue;
    host_.SetServicesAvailable(cloud, app);
    host_.ClearCalls();
    trace_.Clear();
    EXPECT_FALSE(c.run(prompt_, c.tag));
    EXPECT_EQ(trace_.Count(std::string("指针为空") + c.tag), 1u);
    EXPECT_TRUE(host_.CallNames().empty());
    EXPECT_TRUE(prompt_.shown.empty());
  }
}

TEST_P(CallerPaths, SignedOutHostStopsOnlyGroupAndSessionActionsAtTheGate) {
  const CallerCase& c = GetParam();
  host_.SignOut();
  host_.ClearCalls();
  const bool succeeded = c.run(prompt_, c.tag);
  const auto calls = host_.CallNames();
  if (c.gated) {
    EXPECT_FALSE(succeeded);
    EXPECT_EQ(trace_.Count(std::string("没有登陆") + c.tag), 1u);
    EXPECT_EQ(calls, std::vector<std::string>{"IsHostLoggedIn"});
    EXPECT_TRUE(prompt_.shown.empty());
  } else {
    EXPECT_EQ(trace_.Count("没有登陆"), 0u);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "IsHostLoggedIn"), 0);
  }
}

TEST_P(CallerPaths, NullHostKeepsEveryCallerOnItsFailurePath) {
  const CallerCase& c = GetParam();
  host_.Uninstall();
  EXPECT_EQ(c.run(prompt_, c.tag), c.succeedsWithNullHost);
  EXPECT_EQ(trace_.Count("指针为空"), 0u) << "the null host hands out services";
  EXPECT_EQ(trace_.Count(std::string("没有登陆") + c.tag), c.gated ? 1u : 0u);
  EXPECT_TRUE(host_.CallNames().empty());
  EXPECT_TRUE(prompt_.shown.empty());
}

INSTANTIATE_TEST_SUITE_P(AllCallers, CallerPaths, ::testing::ValuesIn(Cases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(HostRuntime, NullHostIsTheDefaultAndInstallSwapsIt) {
  HostSystem* null_host = HostSystem::instance();
  EXPECT_FALSE(null_host->GetCloudService()->IsHostLoggedIn());
  local::LocalHost local("/nonexistent");
  EXPECT_EQ(HostSystem::Install(&local), nullptr);
  EXPECT_EQ(HostSystem::Install(nullptr), &local);
  EXPECT_EQ(HostSystem::instance(), null_host);
}

}  // namespace
}  // namespace host::testing
