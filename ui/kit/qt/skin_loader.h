#pragma once
// Loads skin files (Designer XML under the names windows give them) and knows
// the kit's own widget classes.

#include <QString>
#include <QWidget>

namespace ui::qt {

// Returns the skin's root widget, parented to `parent`, or null after a trace
// naming the file and the reason.
// Each file is read once per process and built from memory afterwards.
QWidget* LoadSkin(const QString& skinFolder, const QString& skinFile, QWidget* parent);
// Drops the read files (tests that rewrite a skin).
void ForgetSkinFiles();

}  // namespace ui::qt

namespace ui::qt {
// The skin folder of the window `widget` lives in (where relative images
// start from); the resource root's skin folder outside any window.
QString SkinFolderOf(const QWidget* widget);
}  // namespace ui::qt
