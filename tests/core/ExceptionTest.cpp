#include "kticore/core/Exception.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "kticore/core/Heap.h"
#include "platform/Module.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::Wide;
using kt::test::WideString;

HMODULE LibraryModule() {
    return kt::sys::ModuleContaining(reinterpret_cast<const void*>(&Mem_DefaultHeap));
}

TEST(Exceptions, EachClassCarriesItsCode) {
    EXPECT_EQ(CXException().GetCode(), XE_NONE);
    EXPECT_EQ(CXException(XE_SHARING).GetCode(), 8);
    EXPECT_EQ(CXMemException().GetCode(), 2);
    EXPECT_EQ(CXEofException().GetCode(), 4);
    CXIFaceException missing(&typeid(IHeap));
    EXPECT_EQ(missing.GetCode(), 10);
    EXPECT_EQ(*missing.iface, typeid(IHeap));
}

TEST(Exceptions, CarryTheLibrarysModule) {
    ASSERT_NE(LibraryModule(), nullptr);
    EXPECT_EQ(CXMemException().module, LibraryModule());
    EXPECT_EQ(CXFileException(XE_IO_FAULT, nullptr, 1).module, LibraryModule());
}

TEST(Exceptions, FileExceptionThrownInTheLibraryIsCaughtByReferenceInTheHost) {
    const KTWCHAR* name = KTW("C:\\data\\report.dat");
    try {
        XThrowFileError(5, name, XFILEOP_OPEN);  // ERROR_ACCESS_DENIED
        FAIL() << "nothing was thrown";
    } catch (CXFileException& failure) {
        EXPECT_EQ(failure.GetCode(), XE_ACCESS_DENIED);
        EXPECT_EQ(Wide(failure.name), Wide(name));
        EXPECT_EQ(failure.operation, XFILEOP_OPEN);
        EXPECT_EQ(failure.module, LibraryModule());
    }
    try {
        XThrowFileError(112, name, XFILEOP_READ_WRITE);  // ERROR_DISK_FULL
    } catch (CXException& failure) {
        EXPECT_EQ(failure.GetCode(), XE_DISK_FULL);
        EXPECT_NE(dynamic_cast<CXFileException*>(&failure), nullptr);
    }
}

class ExceptionNamePool : public ::testing::Test {
protected:
    using Live = std::unique_ptr<CXFileException>;

    static Live Make(const KTWCHAR* name) {
        return std::make_unique<CXFileException>(XE_IO_FAULT, name, XFILEOP_READ_WRITE);
    }
};

TEST_F(ExceptionNamePool, FourLiveNamesHaveSlotsOfTheirOwn) {
    std::vector<Live> live;
    live.push_back(Make(KTW("one")));
    live.push_back(Make(KTW("two")));
    live.push_back(Make(KTW("three")));
    live.push_back(Make(KTW("four")));
    EXPECT_EQ(Wide(live[0]->name), KTW("one"));
    EXPECT_EQ(Wide(live[3]->name), KTW("four"));
    // The slots are one static block of 512 units each.
    for (size_t i = 1; i < live.size(); ++i)
        EXPECT_EQ(live[i]->name - live[0]->name, static_cast<std::ptrdiff_t>(512 * i));
}

TEST_F(ExceptionNamePool, FifthLiveNameOverwritesTheFirstSlot) {
    Live first = Make(KTW("first"));
    Live second = Make(KTW("second"));
    Live third = Make(KTW("third"));
    Live fourth = Make(KTW("fourth"));
    Live fifth = Make(KTW("fifth"));
    EXPECT_EQ(fifth->name, first->name);
    EXPECT_EQ(Wide(first->name), KTW("fifth"));
    EXPECT_EQ(Wide(second->name), KTW("second"));
}

TEST_F(ExceptionNamePool, DestroyedExceptionFreesItsSlotForTheNext) {
    Live first = Make(KTW("first"));
    Live second = Make(KTW("second"));
    const KTWCHAR* secondSlot = second->name;
    second.reset();
    Live next = Make(KTW("next"));
    EXPECT_EQ(next->name, secondSlot);
    EXPECT_EQ(Wide(first->name), KTW("first"));
}

TEST_F(ExceptionNamePool, NullNameIsEmpty) {
    Live unnamed = Make(nullptr);
    ASSERT_NE(unnamed->name, nullptr);
    EXPECT_EQ(Wide(unnamed->name), KTW(""));
}

TEST_F(ExceptionNamePool, CopySharesTheSlot) {
    Live original = Make(KTW("shared"));
    CXFileException copy(*original);
    EXPECT_EQ(copy.name, original->name);
    EXPECT_EQ(copy.operation, original->operation);
    EXPECT_EQ(copy.GetCode(), XE_IO_FAULT);
}

TEST_F(ExceptionNamePool, LongNameKeepsItsFirst511Units) {
    WideString longName(600, KTWCHAR('a'));
    longName[510] = KTWCHAR('z');
    Live failure = Make(longName.c_str());
    EXPECT_EQ(Wide(failure->name), longName.substr(0, 511));
}

TEST_F(ExceptionNamePool, LongNameIsNotCutInsideASurrogatePair) {
    // The 511th and 512th units are one character beyond the basic plane.
    WideString longName(510, KTWCHAR('a'));
    longName += KTW("\xD83D\xDE00\xD83D\xDE00");
    Live failure = Make(longName.c_str());
    EXPECT_EQ(Wide(failure->name), longName.substr(0, 510));
}

// The two maps differ where storage means something else by the same word.
TEST(ErrorMaps, StorageAccessDeniedMeansInUseUnlikeWin32) {
    EXPECT_EQ(XErrorFromWin32(5), XE_ACCESS_DENIED);
    EXPECT_EQ(XErrorFromHResult(0x80030005), XE_SHARING);
    EXPECT_EQ(XErrorFromHResult(0x80030013), XE_ACCESS_DENIED);
    EXPECT_EQ(XErrorFromHResult(0x80030002), XE_FILE_NOT_FOUND);
    EXPECT_EQ(XErrorFromHResult(0x80030003), XE_FILE_NOT_FOUND);
    EXPECT_EQ(XErrorFromWin32(3), XE_PATH_NOT_FOUND);
}

TEST(ErrorMaps, UnlistedValuesFallBackToTheirOwnDefaults) {
    for (DWORD unlisted : {0u, 1u, 87u, 1000u, 0xFFFFFFFFu})
        EXPECT_EQ(XErrorFromWin32(unlisted), XE_GENERIC) << "Win32 error " << unlisted;
    for (DWORD unlisted : {0u, 0x80004005u, 0x80070005u, 0x80030001u})
        EXPECT_EQ(XErrorFromHResult(unlisted), XE_BAD_DATA) << std::hex << "status " << unlisted;
}

}  // namespace
