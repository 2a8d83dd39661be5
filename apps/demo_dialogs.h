#pragma once
// The dialogs of the chat window, opened as the user would and saved as
// pictures by the headless run.

#include <string>

namespace demo {

// The add menu under CreateGroupBtn (saved to `menuPath`), then its
// "添加好友" item: the add-friend dialog, in which `account` is searched
// (saved to `dialogPath` once the result shows). True when both were saved.
bool ShootAddFriend(const std::string& account, const std::string& menuPath,
                    const std::string& dialogPath);

// The settings dialog opened at IMSetUp, closed with its cancel button.
bool ShootSettings(const std::string& path);

}  // namespace demo
