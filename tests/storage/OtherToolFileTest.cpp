// A compound file that another program wrote (tests/storage/msibuild-file.sh,
// run by the ctest fixture "msibuild_file"; its path comes in
// KT_OTHER_TOOL_FILE): opened, enumerated and read, its document properties
// by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>

#include "kticore/storage/Property.h"
#include "tests/storage/StorageSupport.h"

namespace {

using kt::test::Names;
using kt::test::StorageRef;

StorageRef OpenOtherToolFile() {
    const char* unixPath = std::getenv("KT_OTHER_TOOL_FILE");
    if (unixPath == nullptr) {
        ADD_FAILURE() << "no file of the other program; run through ctest";
        return nullptr;
    }
    return StorageRef(open_Storage(kt::test::W(std::string("Z:") + unixPath).c_str(), 1));
}

TEST(OtherToolFile, OpensEnumeratesAndReads) {
    StorageRef installer = OpenOtherToolFile();
    ASSERT_NE(installer, nullptr);

    // The database's three tables have names that msibuild encodes in
    // characters the ANSI code page lacks: each comes out as '?'s.
    std::vector<std::string> streams = Names(installer->EnumStreams());
    std::sort(streams.begin(), streams.end());
    EXPECT_EQ(streams, (std::vector<std::string>{"\005SummaryInformation", "+-+", "?????",
                                                 "???????", "???????"}));
    EXPECT_EQ(Names(installer->EnumStorages()), std::vector<std::string>{});

    std::string every(256, '\0');
    for (int value = 0; value < 256; ++value)
        every[value] = static_cast<char>(value);
    EXPECT_EQ(kt::test::ReadText(installer.get(), "+-+"), every);
}

// msibuild's summary set with the code page property that the format asks
// for and msibuild leaves out: one more entry in the section's list of
// properties (whose offsets, from the section's start, move on by it) and
// the value, a 16-bit number, at the section's end.
std::string WithCodePage(std::string set) {
    constexpr DWORD kCodePageId = 1, kTwoByteInteger = 2, kCodePage = 1252;
    // Checked: the set comes from another program. (The inserts below check
    // their own positions.)
    const auto word = [&](size_t at) {
        if (at > set.size() || set.size() - at < sizeof(DWORD))
            throw std::out_of_range("msibuild's summary set ends early");
        DWORD value;
        std::memcpy(&value, set.data() + at, sizeof value);
        return value;
    };
    const auto put = [&](size_t at, DWORD value) { std::memcpy(&set[at], &value, sizeof value); };
    const auto bytes = [](std::initializer_list<DWORD> words) {
        return std::string(reinterpret_cast<const char*>(words.begin()), words.size() * 4);
    };
    const size_t section = word(44);  // the header's offset of its one section
    const DWORD size = word(section), count = word(section + 4);
    for (DWORD i = 0; i < count; ++i)
        put(section + 12 + 8 * i, word(section + 12 + 8 * i) + 8);
    set.insert(section + size, bytes({kTwoByteInteger, kCodePage}));
    set.insert(section + 8, bytes({kCodePageId, size + 8}));
    put(section, size + 16);
    put(section + 4, count + 1);
    return set;
}

// msibuild sets the subject and author it was given and a title, keywords
// and application name of its own; it writes no comments. A set without a
// code page may not give its narrow texts (Wine 8 gives none), so there each
// name reads as absent or as its text; with the code page added, every text
// reads by its name.
TEST(OtherToolFile, PropertiesReadByName) {
    StorageRef installer = OpenOtherToolFile();
    ASSERT_NE(installer, nullptr);
    StorageRef amended(new_Storage(nullptr, 0));
    const char summary[] = "\005SummaryInformation";
    kt::test::WriteText(amended.get(), summary,
                        WithCodePage(kt::test::ReadText(installer.get(), summary)));
    const std::pair<const char*, std::string> expected[] = {
        {"Title", "Installation Database"}, {"Subject", "Kitchen planner"},
        {"Author", "Jane Doe"},             {"Keywords", "Installer, MSI"},
        {"App name", "libmsi msibuild"},    {"Comments", "<absent>"},
    };
    const auto read = [](IXStorage* storage, const char* name) {
        void* found = nullptr;
        EXPECT_EQ(storage->QueryInterface(typeid(IKTProperty), &found), 1);
        kt::test::Ref<IKTProperty> properties(static_cast<IKTProperty*>(found));
        CKTVariant value;
        return properties->GetProperty(name, &value) ? std::string(value.pszVal) : "<absent>";
    };
    for (const auto& [name, text] : expected) {
        const std::string asWritten = read(installer.get(), name);
        EXPECT_TRUE(asWritten == "<absent>" || asWritten == text) << name << ": " << asWritten;
        EXPECT_EQ(read(amended.get(), name), text) << name;
    }
}

}  // namespace
