// Where the tests' own class module lies, and whether the process has loaded
// it. The build names it by KT_TEST_CLASSES_FILE (the file name, found on the
// module search path beside the test) and KT_TEST_CLASSES_PATH (what loads
// it directly); KT_TEST_LATE_CLASSES_... and KT_TEST_LACKING_CLASSES_... name
// copies that only the test of late loading, and that of a module lacking a
// factory, touch.
#pragma once

#include "kticore/platform/Platform.h"
#include "tests/plugin/TestShape.h"

#if !defined(_WIN32)
#    include <dlfcn.h>
#endif

namespace kt::test {

inline bool IsModuleLoaded(const char* path) {
#if defined(_WIN32)
    return GetModuleHandleA(path) != nullptr;
#else
    void* handle = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
#endif
}

}  // namespace kt::test
