#pragma once
// The module-wide objects: built when the library is loaded, before any
// export runs, and taken down when it is unloaded.

class CChatTools;
class CIMWnd;

namespace module {

CIMWnd& MainWindow();

// Called once the SDK has been started: makes the unload run before the
// SDK's own objects go at process exit.
void ArmUnloadAfterStartup();
CChatTools& Tools();

// The host's main window as a native window id (the first top-level main
// window of the application), or null when there is none.
void* HostMainWindow();

}  // namespace module
