#pragma once
// User texts that follow straight from a host result, shared by the
// algorithms here and the windows that show them (UTF-8 source; convert with
// platform::W).

namespace host::text {

inline constexpr const char* kErrorTitle = "错误";
inline constexpr const char* kNoticeTitle = "提示";

inline constexpr const char* kGroupQueryFailed = "查询群信息失败！！！";
inline constexpr const char* kGroupQueryFailedTrace = "查询群信息失败!!!";
inline constexpr const char* kAddMembersQueryTitle = "查询群信息";
inline constexpr const char* kAddMembersQueryFailed = "查询群信息失败!";
inline constexpr const char* kRoleQueryFailed = "查询群角色失败！！！";
inline constexpr const char* kNotOwner = "非管理员不能删除群成员！！！";
inline constexpr const char* kRemoveMembersFailed = "删除群成员失败！！！";
inline constexpr const char* kLeaveFailed = "退群失败！！！";
inline constexpr const char* kDisbandFailed = "解散群组失败！！！";
inline constexpr const char* kRenameFailed = "设置群名称失败！！！";
inline constexpr const char* kAddMembersFailed = "添加群成员失败!";
inline constexpr const char* kCreateGroupFailed = "创建群失败。";

inline constexpr const char* kTransferConfirm = "确定选择%s为新群主,你将放弃群主身份。";
inline constexpr const char* kTransferDone = "转移群组权限成功!";
inline constexpr const char* kTransferDoneName = " \"%s\" 已成为新群主";
inline constexpr const char* kTransferFailed = "转移群组权限失败!";

inline constexpr const char* kSearchFailed = "查找失败，无此账号的用户！";
inline constexpr const char* kInviteSent = "已经发送邀请！";

inline constexpr const char* kDrawingGone = "图纸不存在或已被删除!";
inline constexpr const char* kEnterSharedDrawingFailed = "进入共享聊图失败";
inline constexpr const char* kSharedChatFull = "人数超限，最多可%s人同时进行共享聊图。";
inline constexpr const char* kSharedStateQueryFailed = "查询自己和对方是否进入了聊图失败!!!";

}  // namespace host::text

#include "platform/strings.h"

namespace host::text {

// The UTF-16 form of `pattern` with its first "%s" replaced by `argument`.
WString Format(const char* pattern, const WString& argument);

}  // namespace host::text
