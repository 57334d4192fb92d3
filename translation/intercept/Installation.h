// Where the interceptors are installed besides the modules that ask for them:
// the framework modules that fetch resources and open dialogs on an
// application's behalf.
#pragma once

namespace kt {

// Installs the interceptors in each framework module that is loaded, once a
// dictionary is; they are taken out again when the library is unloaded.
void InstallInFrameworkModules();

}  // namespace kt
