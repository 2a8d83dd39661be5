#pragma once
// The dialogs of the chat window, opened as the user would and saved as
// pictures by the headless run.

#include <functional>
#include <string>

class QString;
class QWidget;

namespace host::local {
class LocalHost;
}

namespace demo {

// The visible top-level window whose object name is `className`, or null.
QWidget* ShownWindow(const char* className);
// Processes events until `done` (true) or five seconds passed (false).
bool Pump(const std::function<bool()>& done);
// Clicks the button `name` of `window`; false when there is none.
bool Click(QWidget* window, const char* name);
// Runs `act` on the modal dialog `className` once it shows; its modal loop
// starts from `open`. The dialog is closed if `act` leaves it open, unless
// `closeIfOpen` is false (a dialog that closes itself with its own code).
// True when `act` succeeded and the dialog has gone.
bool WithModal(const char* className, const std::function<void()>& open,
               const std::function<bool(QWidget*)>& act, bool closeIfOpen = true);
// Saves a picture of `window`; false when it cannot be written.
bool Save(QWidget* window, const std::string& path);

// The add menu under CreateGroupBtn (saved to `menuPath`), then its
// "添加好友" item: the add-friend dialog, in which `account` is searched
// (saved to `dialogPath` once the result and the account's avatar show).
// True when both were saved.
bool ShootAddFriend(const std::string& account, const std::string& menuPath,
                    const std::string& dialogPath);

// 赵工's avatar, a picture file under `dataRoot` that the host hands out;
// the add-friend dialog shows it once it has been fetched.
void GiveStrangerAnAvatar(host::local::LocalHost& host, const std::string& dataRoot);

// The settings dialog opened at IMSetUp, closed with its cancel button.
bool ShootSettings(const std::string& path);

}  // namespace demo
