// The application's modules, translated as they come: each module outside
// the Windows directory has the library's interceptors installed, and its
// calls of LoadLibrary watched so that the modules a load brings are taken
// too. The system's modules keep their own texts; the library itself
// patches the framework modules among them.
#pragma once

namespace kttool::agent {

// Takes every module loaded now that was not taken before.
void TakeNewModules();

}  // namespace kttool::agent
