#pragma once
// User texts of the drawing controller (UTF-8 source; convert with
// platform::W). Those that follow straight from a host result are in
// host/host_texts.h.

namespace service::drawings::text {

inline constexpr const char* kEnterSharedDrawingFailedText = "进入共享聊图失败。";
inline constexpr const char* kInOtherSession = "你正在另一个共享聊图中，请先退出后再进入。";
inline constexpr const char* kNoPeerSession =
    "对方没有在共享聊图中。共享聊图请在群聊中选择群空间的图纸发起。";
inline constexpr const char* kOpenDrawingTitle = "打开图纸";
inline constexpr const char* kOpenDrawingFailed = "打开图纸失败!!!";

}  // namespace service::drawings::text
