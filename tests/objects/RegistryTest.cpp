// The class registry against a real second module of the tests. Every test
// leaves the registry as it found it.
#include "kticore/objects/Registry.h"

#include <gtest/gtest.h>

#include "kticore/core/Exception.h"
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

TEST(Registry, TheFirstRegistrationStandsAlsoWhenItsModuleLacksTheFactory) {
    // The twin shares the shape class's hash, so both names are one key, and
    // the module lacks the twin's export: only the twin's entry can not create.
    ASSERT_FALSE(kt::test::IsModuleLoaded(KT_TEST_LACKING_CLASSES_PATH));
    Registration twin("CLSID_Tesjx8wrb", KT_TEST_LACKING_CLASSES_FILE);
    Registration shape(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE);
    EXPECT_EQ(twin.result, 1);
    EXPECT_EQ(shape.result, 1);
    for (int attempt = 0; attempt < 2; ++attempt) {
        IKTUnknown* made = reinterpret_cast<IKTUnknown*>(&made);
        EXPECT_EQ(CreateObject(KT_TEST_SHAPE_CLASS, nullptr, typeid(IKTUnknown), &made), 0);
        EXPECT_EQ(made, nullptr);
    }
    // The module stays loaded and the entry stays registered.
    EXPECT_TRUE(kt::test::IsModuleLoaded(KT_TEST_LACKING_CLASSES_PATH));
    EXPECT_EQ(IsRegisterObject(KT_TEST_SHAPE_CLASS), 1);
}

TEST(Registry, WhatAFactoryThrowsPassesThrough) {
    Registration throwing(KT_TEST_THROWING_CLASS, KT_TEST_CLASSES_FILE);
    IKTUnknown* made = reinterpret_cast<IKTUnknown*>(&made);
    try {
        CreateObject(KT_TEST_THROWING_CLASS, nullptr, typeid(IKTUnknown), &made);
        ADD_FAILURE() << "the factory's exception was lost";
    } catch (const CXException& failure) {
        EXPECT_EQ(failure.code, static_cast<DWORD>(KT_TEST_THROWN_CODE));
    }
    EXPECT_EQ(made, nullptr);
}

TEST(Registry, NamesAreTheirHashesAlone) {
    // "CLSID_Tesjx8wrb" has the 32-bit hash of "CLSID_TestShape".
    Registration shape(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE);
    EXPECT_EQ(IsRegisterObject("CLSID_Tesjx8wrb"), 1);
    IKTUnknown* made = nullptr;  // through the plain export, which is the same function
    ASSERT_EQ(CreateObjectC("CLSID_Tesjx8wrb", nullptr, typeid(IPersistXStream), &made), 1);
    Ref<IPersistXStream> twin(static_cast<IPersistXStream*>(made));
    EXPECT_STREQ(twin->GetClassName(), KT_TEST_SHAPE_CLASS);
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

}  // namespace
