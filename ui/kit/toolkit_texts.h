#pragma once
// The toolkit's own texts (an edit's context menu, file dialogs, standard
// buttons) in the window's language, simplified Chinese.

namespace ui {

// Loads the toolkit's Chinese translations into the application once; false
// (and traced) when they are not installed, leaving the toolkit's English.
bool UseChineseToolkitTexts();

}  // namespace ui
