// The class registry against a real second module of the tests. Every test
// leaves the registry as it found it.
#include "kticore/objects/Registry.h"

#include <gtest/gtest.h>

#include "platform/Module.h"
#include "tests/support/Counted.h"
#include "tests/support/TestClasses.h"

namespace {

using kt::test::Ref;

// Registers a name for the test's duration.
class Registration {
public:
    Registration(const char* name, const char* moduleName)
        : name(name), result(RegisterObject(name, moduleName)) {}
    Registration(const char* name, HMODULE module) : name(name), result(RegisterObject(name, module)) {}
    ~Registration() { UnregisterObject(name); }
    const char* name;
    int result;
};

Ref<ITestShape> CreateShape(const char* name) {
    IKTUnknown* made = nullptr;
    EXPECT_NE(CreateObject(name, nullptr, typeid(ITestShape), &made), 0) << name;
    return Ref<ITestShape>(static_cast<ITestShape*>(made));
}

TEST(Registry, AModuleFileIsFoundAtRegistrationAndLoadedAtTheFirstCreation) {
    using kt::test::IsModuleLoaded;
    ASSERT_FALSE(IsModuleLoaded(KT_TEST_LATE_CLASSES_PATH));
    Registration shape(KT_TEST_SHAPE_CLASS, KT_TEST_LATE_CLASSES_FILE);
    EXPECT_EQ(shape.result, 1);
    EXPECT_EQ(IsRegisterObject(KT_TEST_SHAPE_CLASS), 1);
    EXPECT_FALSE(IsModuleLoaded(KT_TEST_LATE_CLASSES_PATH));
    Ref<ITestShape> first = CreateShape(KT_TEST_SHAPE_CLASS);
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(IsModuleLoaded(KT_TEST_LATE_CLASSES_PATH));
    first->SetId(7);
    Ref<ITestShape> second = CreateShape(KT_TEST_SHAPE_CLASS);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->GetId(), 0u);
}

TEST(Registry, AModuleFileThatIsNotOnTheSearchPathIsRefused) {
    EXPECT_EQ(RegisterObject("CLSID_Nowhere", "kt_no_such_module.dll"), 0);
    EXPECT_EQ(IsRegisterObject("CLSID_Nowhere"), 0);
}

TEST(Registry, ALoadedModuleMustExportTheName) {
    HMODULE module = kt::sys::LoadModule(KT_TEST_CLASSES_PATH);
    ASSERT_NE(module, nullptr);
    {
        Registration shape(KT_TEST_SHAPE_CLASS, module);
        EXPECT_EQ(shape.result, 1);
        EXPECT_NE(CreateShape(KT_TEST_SHAPE_CLASS), nullptr);
    }
    EXPECT_EQ(RegisterObject("CLSID_NotExported", module), 0);
    EXPECT_EQ(IsRegisterObject("CLSID_NotExported"), 0);
}

TEST(Registry, TheFirstRegistrationStands) {
    Registration first(KT_TEST_REFUSING_CLASS, KT_TEST_CLASSES_FILE);
    Registration again(KT_TEST_REFUSING_CLASS, "kt_no_such_module.dll");
    EXPECT_EQ(first.result, 1);
    EXPECT_EQ(again.result, 1);
    IKTUnknown* made = reinterpret_cast<IKTUnknown*>(&made);
    EXPECT_EQ(CreateObject(KT_TEST_REFUSING_CLASS, nullptr, typeid(IKTUnknown), &made), 0);
    EXPECT_EQ(made, nullptr);
}

TEST(Registry, NamesAreTheirHashesAlone) {
    // "CLSID_Tesjx8wrb" has the 32-bit hash of "CLSID_TestShape".
    Registration shape(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE);
    EXPECT_EQ(IsRegisterObject("CLSID_Tesjx8wrb"), 1);
    Ref<ITestShape> made = CreateShape("CLSID_Tesjx8wrb");
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->GetClassName(), KT_TEST_SHAPE_CLASS);
    EXPECT_EQ(IsRegisterObject("clsid_testshape"), 0);  // case counts
}

TEST(Registry, UnknownNamesCreateNothing) {
    IKTUnknown* made = reinterpret_cast<IKTUnknown*>(&made);
    EXPECT_EQ(CreateObject("CLSID_Unknown", nullptr, typeid(IKTUnknown), &made), 0);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(UnregisterObject("CLSID_Unknown"), 0);
}

TEST(Registry, UnregisteredNamesCanBeRegisteredAgain) {
    EXPECT_EQ(RegisterObject(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE), 1);
    EXPECT_EQ(UnregisterObject(KT_TEST_SHAPE_CLASS), 1);
    IKTUnknown* made = nullptr;
    EXPECT_EQ(CreateObject(KT_TEST_SHAPE_CLASS, nullptr, typeid(IKTUnknown), &made), 0);
    Registration again(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE);
    EXPECT_NE(CreateShape(KT_TEST_SHAPE_CLASS), nullptr);
}

TEST(Registry, ThePlainExportCreatesLikeTheOther) {
    Registration shape(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE);
    IKTUnknown* made = nullptr;
    EXPECT_EQ(CreateObjectC(KT_TEST_SHAPE_CLASS, nullptr, typeid(IPersistXStream), &made), 1);
    ASSERT_NE(made, nullptr);
    made->Release();
}

}  // namespace
