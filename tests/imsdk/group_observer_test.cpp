// The group-change hook: what it reports, on which thread, and that it can
// call back into the engine.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

std::string Join(const std::vector<std::string>& ids) {
  std::string joined;
  for (const auto& id : ids) joined += (joined.empty() ? "" : ",") + id;
  return joined;
}

class RecordingObserver final : public imsdk::GroupObserver {
 public:
  // Runs inside every call, before the line is recorded.
  std::function<void(const std::string& line)> during;

  std::vector<std::string> Lines() const {
    std::lock_guard lock(mutex_);
    return lines_;
  }
  size_t Count() const { return Lines().size(); }
  std::vector<std::thread::id> Threads() const {
    std::lock_guard lock(mutex_);
    return threads_;
  }

  void OnGroupCreated(const std::string& id, const std::string& name, const std::string& owner,
                      const std::vector<std::string>& members) override {
    Add("created " + id + " " + name + " " + owner + " " + Join(members));
  }
  void OnMembersJoined(const std::string& id, const std::vector<std::string>& members) override {
    Add("joined " + id + " " + Join(members));
  }
  void OnMembersLeft(const std::string& id, const std::vector<std::string>& members) override {
    Add("left " + id + " " + Join(members));
  }
  void OnGroupRenamed(const std::string& id, const std::string& name) override {
    Add("renamed " + id + " " + name);
  }
  void OnOwnerChanged(const std::string& id, const std::string& owner) override {
    Add("owner " + id + " " + owner);
  }
  void OnGroupDismissed(const std::string& id) override { Add("dismissed " + id); }

 private:
  void Add(const std::string& line) {
    if (during) during(line);
    std::lock_guard lock(mutex_);
    lines_.push_back(line);
    threads_.push_back(std::this_thread::get_id());
  }
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
  std::vector<std::thread::id> threads_;
};

std::string CreateParam(const std::string& id, const std::string& name,
                        const std::vector<std::string>& members) {
  Json::Value p;
  p["create_group_param_group_name"] = name;
  p["create_group_param_group_id"] = id;
  for (const auto& m : members) {
    Json::Value entry;
    entry["group_member_info_identifier"] = m;
    p["create_group_param_group_member_array"].append(entry);
  }
  return Write(p);
}

// {"<prefix>_group_id": id, "<prefix>_identifier_array": members}
std::string MembersParam(const std::string& prefix, const std::string& id,
                         const std::vector<std::string>& members) {
  Json::Value p;
  p[prefix + "_group_id"] = id;
  for (const auto& m : members) p[prefix + "_identifier_array"].append(m);
  return Write(p);
}

std::string ModifyParam(const std::string& id, const std::string& key, const std::string& value) {
  Json::Value p;
  p["group_modify_info_param_group_id"] = id;
  p["group_modify_info_param_" + key] = value;
  return Write(p);
}

class GroupObserverTest : public SdkTest {
 protected:
  void SetUp() override {
    SdkTest::SetUp();
    for (const char* id : {"bob", "carol"}) control.CreateAccount(id);
    SignIn("alice");
  }
  void TearDown() override {
    control.SetGroupObserver(nullptr);
    SdkTest::TearDown();
  }
  // Registers the observer once its `during` is set.
  void Observe() { control.SetGroupObserver(&observer); }

  RecordingObserver observer;
};

TEST_F(GroupObserverTest, EveryChangeIsReportedOnceBeforeTheCallReturns) {
  Observe();
  const std::string inv = "group_invite_member_param";
  const std::string del = "group_delete_member_param";
  using CCall = int (*)(const char*, TIMCommCallback, void*);
  const struct {
    std::vector<std::string> lines;
    std::function<void()> control;  // runs first, when set
    CCall call = nullptr;           // then the C call with `param`, when set
    std::string param = {};
  } cases[] = {
      {{"created g1 D alice alice,bob"}, {}, TIMGroupCreate, CreateParam("g1", "D", {"bob"})},
      {{"renamed g1 D2"}, {}, TIMGroupModifyGroupInfo, ModifyParam("g1", "group_name", "D2")},
      {{"joined g1 carol"},
       {},
       TIMGroupInviteMember,
       MembersParam(inv, "g1", {"carol", "bob", "ghost"})},
      {{}, {}, TIMGroupInviteMember, MembersParam(inv, "g1", {"bob"})},  // nobody new
      {{"left g1 carol"}, {}, TIMGroupDeleteMember, MembersParam(del, "g1", {"carol"})},
      {{}, [&] { control.FailNextResult("TIMGroupQuit", TIM_ERR_NETWORK); }, TIMGroupQuit, "g1"},
      {{"owner g1 bob"}, {}, TIMGroupModifyGroupInfo, ModifyParam("g1", "owner", "bob")},
      {{}, {}, TIMGroupDelete, "g1"},  // a member may not disband
      {{"left g1 alice"}, {}, TIMGroupQuit, "g1"},
      {{"dismissed g1"}, [&] { control.DisbandGroup("bob", "g1"); }},
      {{"created g2 T bob bob,carol"}, [&] { control.CreateGroup("bob", "T", {"carol"}, "g2"); }},
      {{"joined g2 alice"}, [&] { control.AddGroupMembers("carol", "g2", {"alice"}); }},
      {{"renamed g2 T2"}, [&] { control.RenameGroup("alice", "g2", "T2"); }},
      {{"owner g2 carol"}, [&] { control.TransferGroupOwner("bob", "g2", "carol"); }},
      {{"left g2 bob"}, [&] { control.RemoveGroupMembers("carol", "g2", {"bob"}); }},
      {{"left g2 alice"}, [&] { control.QuitGroup("alice", "g2"); }},
      {{}, [&] { control.RemoveGroupMembers("alice", "g2", {"carol"}); }},  // no longer a member
  };
  int step = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE("step " + std::to_string(step));
    const std::string tag = "step " + std::to_string(step++);
    const size_t before = observer.Count();
    if (c.control) c.control();
    if (c.call) c.call(c.param.c_str(), OnResult, Tag(tag));
    // Already there when the call returns, on the calling thread.
    std::vector<std::string> lines = observer.Lines();
    EXPECT_EQ(std::vector<std::string>(lines.begin() + before, lines.end()), c.lines);
    if (c.call) rec.Result(tag);
  }
  for (std::thread::id thread : observer.Threads()) EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(GroupObserverTest, TipsCallbackRunsAfterTheObserverHasSeenTheChange) {
  // A slow observer: without the hold the tips callback would overtake it.
  observer.during = [](const std::string&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
  };
  Observe();
  static std::atomic<size_t> seen_at_tips{0};
  static RecordingObserver* watched = nullptr;
  watched = &observer;
  TIMSetGroupTipsEventCallback(
      [](const char* json, void*) {
        seen_at_tips = watched->Count();
        GetRecorder().Add({"group_tips", 0, json, "", std::this_thread::get_id()});
      },
      nullptr);
  std::thread other([&] { control.CreateGroup("bob", "T", {"alice"}, "g3"); });
  other.join();
  ASSERT_EQ(rec.WaitFor("group_tips").size(), 1u);
  EXPECT_EQ(seen_at_tips.load(), 1u);
}

TEST_F(GroupObserverTest, ObserverCallsBackIntoTheEngine) {
  std::vector<std::string> members_seen;
  observer.during = [&](const std::string& line) {
    if (line.rfind("created", 0) != 0) return;
    members_seen = control.GroupMembers("g4");  // takes the engine's lock
    EXPECT_EQ(control.RenameGroup("alice", "g4", "later"), 0);
    // The nested change waits for this call to end.
    EXPECT_EQ(observer.Count(), 0u);
  };
  Observe();
  ASSERT_EQ(TIMGroupCreate(CreateParam("g4", "now", {"bob"}).c_str(), OnResult, Tag("c4")), 0);
  EXPECT_EQ(members_seen, (std::vector<std::string>{"alice", "bob"}));
  EXPECT_EQ(observer.Lines(),
            (std::vector<std::string>{"created g4 now alice alice,bob", "renamed g4 later"}));
  EXPECT_EQ(rec.Result("c4").code, 0);
}

TEST_F(GroupObserverTest, ConcurrentChangesEachReturnAfterTheirOwnDelivery) {
  control.CreateGroup("bob", "A", {"carol"}, "ga");
  control.CreateGroup("carol", "B", {"bob"}, "gb");
  observer.during = [](const std::string&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  Observe();
  std::atomic<int> missing{0};
  auto run = [&](const std::string& actor, const std::string& group) {
    for (int i = 0; i < 20; ++i) {
      const std::string name = group + std::to_string(i);
      control.RenameGroup(actor, group, name);
      const auto lines = observer.Lines();
      if (std::find(lines.begin(), lines.end(), "renamed " + group + " " + name) == lines.end()) {
        ++missing;
      }
    }
  };
  std::thread a(run, "bob", "ga");
  std::thread b(run, "carol", "gb");
  a.join();
  b.join();
  EXPECT_EQ(missing.load(), 0);
  EXPECT_EQ(observer.Count(), 40u);
}

TEST_F(GroupObserverTest, ReplacingTheObserverWaitsForItsRunningCall) {
  std::atomic<bool> entered{false};
  std::atomic<bool> finished{false};
  observer.during = [&](const std::string&) {
    entered = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    finished = true;
  };
  Observe();
  std::thread other([&] { control.CreateGroup("bob", "T", {}, "g5"); });
  while (!entered) std::this_thread::yield();
  control.SetGroupObserver(nullptr);
  EXPECT_TRUE(finished);
  other.join();
  control.RenameGroup("bob", "g5", "unseen");
  EXPECT_EQ(observer.Count(), 1u);
}

}  // namespace
}  // namespace imsdk_test
