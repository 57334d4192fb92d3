// The exports that callers outside the object model find by name, with
// GetProcAddress or a .def file of their own: they must carry no C++
// decoration.
#include <windows.h>

#include <gtest/gtest.h>

namespace {

TEST(PlainExports, AreFoundByTheirUndecoratedNames) {
    const HMODULE library = GetModuleHandleW(L"kticore.dll");
    ASSERT_NE(library, nullptr);
    for (const char* name : {"CreateObjectC", "new_IParamIniFile", "HookProc_Install",
                             "HookProc_UnInstall", "_InitResTranslation",
                             "_DeInitResTranslation", "CLSID_OFSERVICECONTAINER",
                             "new_IParamCUReg", "new_IParamLMReg"})
        EXPECT_NE(GetProcAddress(library, name), nullptr) << name;
}

}  // namespace
