#include "host/owner_transfer.h"

#include "host_test_support.h"

namespace host::testing {
namespace {

class OwnerTransfer : public LocalHostTest {
 protected:
  OwnerTransferResult Transfer(int32_t newOwner, const WString& name) {
    return TransferGroupOwnership({1001, newOwner, name},
                                  "TransferManage::TransferGroupManage  error ", prompt_,
                                  [this] { ++followUps_; });
  }
  int32_t RoleOf(int32_t accountId) {
    const GroupDetail group = *host_.FindGroup(u"group_1001");
    for (const auto& member : group.members) {
      if (member.accountId == accountId) return member.role;
    }
    return -1;
  }
  int followUps_ = 0;
};

TEST_F(OwnerTransfer, ConfirmedTransferMovesTheOwnerAndSaysSo) {
  EXPECT_EQ(Transfer(2, u"Bob"), OwnerTransferResult::kDone);
  ASSERT_EQ(prompt_.shown.size(), 2u);
  EXPECT_TRUE(prompt_.shown[0].question);
  EXPECT_EQ(prompt_.shown[0].text, "确定选择Bob为新群主,你将放弃群主身份。");
  EXPECT_FALSE(prompt_.shown[1].question);
  EXPECT_EQ(prompt_.shown[1].text, "转移群组权限成功! \"Bob\" 已成为新群主");
  EXPECT_EQ(host_.CallNames(),
            (std::vector<std::string>{"IsHostLoggedIn", "CheckGroupOwnerTransfer",
                                      "TransferGroupOwner"}));
  EXPECT_EQ(host_.Calls().back().args, "1001,2");
  EXPECT_EQ(RoleOf(2), 1);
  EXPECT_EQ(RoleOf(1), 0);
  EXPECT_EQ(followUps_, 1);
}

TEST_F(OwnerTransfer, CancelledQuestionCallsNothingMore) {
  prompt_.answer = false;
  EXPECT_EQ(Transfer(2, u"Bob"), OwnerTransferResult::kCancelled);
  EXPECT_EQ(host_.CallNames().back(), "CheckGroupOwnerTransfer");
  EXPECT_EQ(prompt_.shown.size(), 1u);
  EXPECT_EQ(RoleOf(1), 1);
  EXPECT_EQ(followUps_, 0);
}

TEST_F(OwnerTransfer, UnsetNewOwnerEndsBeforeAnyHostCall) {
  EXPECT_EQ(Transfer(-1, u""), OwnerTransferResult::kNoNewOwner);
  EXPECT_TRUE(host_.CallNames().empty());
  EXPECT_TRUE(prompt_.shown.empty());
}

TEST_F(OwnerTransfer, RefusedPreCheckAsksNothing) {
  EXPECT_EQ(Transfer(4, u"Dee"), OwnerTransferResult::kRefused);  // not a member
  EXPECT_TRUE(prompt_.shown.empty());
  EXPECT_TRUE(trace_.Contains("not another member"));
  EXPECT_EQ(host_.CallNames().back(), "CheckGroupOwnerTransfer");
}

TEST_F(OwnerTransfer, HostFailureIsShown) {
  host_.FailOperation("TransferGroupOwner");
  EXPECT_EQ(Transfer(3, u"Cai"), OwnerTransferResult::kHostFailed);
  ASSERT_EQ(prompt_.shown.size(), 2u);
  EXPECT_EQ(prompt_.shown[1].title, "错误");
  EXPECT_EQ(prompt_.shown[1].text, "转移群组权限失败!");
  EXPECT_EQ(followUps_, 0);
}

}  // namespace
}  // namespace host::testing
