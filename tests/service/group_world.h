#pragma once
// The service against the local host kept in step with the engine's groups
// (the engine's group hook): accounts 10001 (the user), 10002 (a friend) and
// 10003 in both, the host signed in as 10001.

#include <memory>
#include <string>
#include <vector>

#include "host/local/engine_group_link.h"
#include "host/local/local_host.h"
#include "tests/service/service_fixture.h"

namespace service_test {

class GroupWorldTest : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    host_.Install();
    for (int32_t id : {10001, 10002, 10003, 10004}) {
      host::local::LocalAccount account;
      account.id = id;
      account.displayName = u"host" + platform::Utf8ToUtf16(std::to_string(id));
      host_.AddAccount(account);
    }
    host_.SignIn(10001);
  }
  void TearDown() override {
    link_.reset();
    host_.Uninstall();
    ServiceTest::TearDown();
  }
  // A group in the engine (and so at the host), joined as the service sees it.
  WString MakeGroup(const std::string& owner, const std::vector<std::string>& others,
                    const std::string& name = "评审组") {
    const std::string id = engine.CreateGroup(owner, name, others);
    const WString wide = platform::Utf8ToUtf16(id);
    EXPECT_TRUE(host_.FindGroup(wide).has_value());
    EXPECT_TRUE(PumpUntil([&] { return tools->IsJoinedGroup(wide); }));
    return wide;
  }
  static std::string Utf8(const WString& text) { return platform::Utf16ToUtf8(text); }
  // The host's owner of the group ("" when the group is gone).
  std::string HostOwner(const WString& groupId) const {
    auto group = host_.FindGroup(groupId);
    return group ? Utf8(group->ownerImUserId) : std::string();
  }

  host::local::LocalHost host_{testing::TempDir() + "group_world_space"};
  std::unique_ptr<host::local::EngineGroupLink> link_ =
      std::make_unique<host::local::EngineGroupLink>(host_);
};

}  // namespace service_test
