#include "kticore/core/Exception.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
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

TEST(Exceptions, CarryTheLibrarysModule) {
    ASSERT_NE(LibraryModule(), nullptr);
    EXPECT_EQ(CXMemException().module, LibraryModule());
    EXPECT_EQ(CXFileException(XE_IO_FAULT, nullptr, 1).module, LibraryModule());
}

TEST(Exceptions, FileExceptionThrownInTheLibraryIsCaughtByReferenceInTheHost) {
    const KTWCHAR* name = KTW("C:\\data\\report.dat");
    const struct {
        DWORD win32Error;
        DWORD code;
        DWORD operation;
    } throws[] = {
        {5, XE_ACCESS_DENIED, XFILEOP_OPEN},      // ERROR_ACCESS_DENIED
        {112, XE_DISK_FULL, XFILEOP_READ_WRITE},  // ERROR_DISK_FULL
    };
    for (const auto& expected : throws) {
        bool caught = false;
        try {
            XThrowFileError(expected.win32Error, name, expected.operation);
        } catch (CXException& failure) {
            caught = true;
            auto* file = dynamic_cast<CXFileException*>(&failure);
            ASSERT_NE(file, nullptr) << "error " << expected.win32Error;
            EXPECT_EQ(file->GetCode(), static_cast<int>(expected.code));
            EXPECT_EQ(Wide(file->name), Wide(name));
            EXPECT_EQ(file->operation, expected.operation);
            EXPECT_EQ(file->module, LibraryModule());
        }
        EXPECT_TRUE(caught) << "error " << expected.win32Error;
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

// A null name takes the first free slot as it stands, empty, so the slot
// stays free: the next exception shares it, and the first of the two to go
// empties the name of the other.
TEST_F(ExceptionNamePool, NullNameLeavesItsSlotFreeForTheNext) {
    Live unnamed = Make(nullptr);
    ASSERT_NE(unnamed->name, nullptr);
    EXPECT_EQ(Wide(unnamed->name), KTW(""));
    Live named = Make(KTW("named"));
    EXPECT_EQ(named->name, unnamed->name);
    EXPECT_EQ(Wide(unnamed->name), KTW("named"));
    unnamed.reset();
    EXPECT_EQ(Wide(named->name), KTW(""));
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

// Every row of both maps. They differ where storage means something else by
// the same word: its "access denied" is an element in use.
struct ErrorRow {
    DWORD code;
    std::vector<DWORD> values;
};

const ErrorRow kWin32Rows[] = {
    {XE_NO_MEMORY, {8, 14, 84, 1130}},
    {XE_DISK_FULL, {39, 112}},
    {XE_END_OF_FILE, {38}},
    {XE_FILE_NOT_FOUND, {2}},
    {XE_PATH_NOT_FOUND, {3, 15, 20, 55, 67, 123, 161, 206, 1203, 1214}},
    {XE_SHARING, {32, 33, 108}},
    {XE_ACCESS_DENIED, {5, 19, 65}},
    {XE_IO_FAULT, {21, 23, 25, 27, 30, 132, 267, 1006, 1117, 1126, 1127, 1128, 1392, 1393}},
    {XE_NETWORK, {50, 53, 54, 58, 64, 70, 88, 1201, 1204, 1206, 1222, 6118}},
    {XE_TOO_MANY_FILES, {4}},
};

const ErrorRow kStorageRows[] = {
    {XE_NO_MEMORY, {0x80030008}},
    {XE_DISK_FULL, {0x80030012, 0x80030070}},
    {XE_FILE_NOT_FOUND, {0x80030002, 0x80030003}},
    {XE_PATH_NOT_FOUND, {0x800300FC}},
    {XE_SHARING, {0x80030005, 0x80030020, 0x80030021, 0x80030100, 0x80030106}},
    {XE_ACCESS_DENIED, {0x80030013}},
    {XE_GENERIC,
     {0x00030202, 0x800300F0, 0x800300FA, 0x800300FD, 0x800300FE, 0x80030104, 0x80030105,
      0x80030108}},
    {XE_IO_FAULT, {0x80030019, 0x8003001D, 0x8003001E, 0x80030103}},
    {XE_NETWORK, {0x80030201, 0x80030202}},
    {XE_TOO_MANY_FILES, {0x80030004}},
};

// Where a mistyped entry would land: the neighbours of the listed values.
template <size_t N>
std::set<DWORD> UnlistedNeighbours(const ErrorRow (&rows)[N], std::set<DWORD> extra) {
    std::set<DWORD> listed;
    for (const ErrorRow& row : rows)
        listed.insert(row.values.begin(), row.values.end());
    for (DWORD value : listed)
        for (DWORD neighbour : {value - 1, value + 1})
            if (listed.count(neighbour) == 0)
                extra.insert(neighbour);
    return extra;
}

TEST(ErrorMaps, EachListedValueGivesItsRowsCode) {
    for (const ErrorRow& row : kWin32Rows)
        for (DWORD error : row.values)
            EXPECT_EQ(XErrorFromWin32(error), row.code) << "Win32 error " << error;
    for (const ErrorRow& row : kStorageRows)
        for (DWORD status : row.values)
            EXPECT_EQ(XErrorFromHResult(status), row.code) << std::hex << "status " << status;
}

TEST(ErrorMaps, UnlistedValuesFallBackToTheirOwnDefaults) {
    for (DWORD unlisted : UnlistedNeighbours(kWin32Rows, {0, 87, 1000, 0xFFFFFFFF}))
        EXPECT_EQ(XErrorFromWin32(unlisted), XE_GENERIC) << "Win32 error " << unlisted;
    for (DWORD unlisted : UnlistedNeighbours(kStorageRows, {0, 0x80004005, 0x80070005}))
        EXPECT_EQ(XErrorFromHResult(unlisted), XE_BAD_DATA) << std::hex << "status " << unlisted;
}

}  // namespace
