// Creation of objects by class name across modules. A class name is also the
// name of an exported factory function in some module; the process-wide
// registry maps names (by their 32-bit hash alone, case counting) to modules,
// loading a module on the first creation when it was registered by file name.
#pragma once

#include "kticore/core/Unknown.h"

// Creates an object aggregated into `outer` (or standing alone for null), puts
// a counted reference to the interface `iface` in `*out`, and returns nonzero.
typedef int (*KTObjectFactory)(IKTUnknown* outer, const type_info& iface, IKTUnknown** out);

// 1 when registered or the name is already known (the first registration
// stands); 0 when the loaded module does not export the name.
KTCORE_API int RegisterObject(const char* name, HMODULE module);
// 1 when registered or already known; 0 when the module file is not found on
// the system's search path (the name carries its own extension). The module
// is loaded only at the first CreateObject.
KTCORE_API int RegisterObject(const char* name, const char* moduleName);
// 1 removed, 0 not known. A loaded module stays loaded.
KTCORE_API int UnregisterObject(const char* name);
// 1 known, 0 not; loads nothing.
KTCORE_API int IsRegisterObject(const char* name);
// The factory's result, or 0 for an unknown name, a module that does not load
// or lacks the export; `*out` is null unless the factory filled it. What the
// factory throws passes through.
KTCORE_API int CreateObject(const char* name, IKTUnknown* outer, const type_info& iface,
                            IKTUnknown** out);
// CreateObject under a plain exported name, for callers outside C++.
extern "C" KTCORE_API int CreateObjectC(const char* name, IKTUnknown* outer,
                                        const type_info& iface, IKTUnknown** out);
