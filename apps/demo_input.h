#pragma once
// What the headless runs do as a user would: wait while the window works,
// click, type, open a conversation from the list, save a screenshot.

#include <functional>
#include <string>
#include <vector>

#include <QPointF>
#include <QString>

class QWidget;

namespace demo {

// Runs the event loop until `done` or the time is up; false on time-out.
bool PumpUntil(const std::function<bool()>& done, int milliseconds);
void Click(QWidget* widget, QPointF at);
void Type(QWidget* widget, const QString& text);
void PressKey(QWidget* widget, int key);
// Clicks the row whose accessible name is `name` in the list `listName` of
// `window`, `fromLeft` pixels from the row's left edge (its middle when
// negative); false when there is no such row.
bool ClickListRow(QWidget* window, const char* listName, const QString& name, int fromLeft = -1);
// Clicks the conversation list's row named `name` (as screen readers hear
// it); false when there is no such row.
bool OpenConversationNamed(QWidget* window, const QString& name);
// The name of the conversation list's row `row`, empty when there is none.
QString ConversationNameAt(QWidget* window, int row);
// Saves the window's picture at `path` and notes it in `shots`.
bool SaveShot(QWidget* window, const std::string& path, std::vector<std::string>& shots);

}  // namespace demo
