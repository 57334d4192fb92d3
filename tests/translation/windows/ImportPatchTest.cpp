// Import address tables rewritten by address: in an image the test lays out
// in memory, whose headers it breaks one field at a time, and in a module of
// the tests' own that is loaded, patched, unloaded and loaded again.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "kticore/translation/Interception.h"
#include "platform/win32/RealFunctions.h"

namespace kt::test {
namespace {

using Table = std::vector<const void*>;
using Bytes = std::vector<std::uint8_t>;

const void* Exported(const char* library, const char* function) {
    return reinterpret_cast<const void*>(GetProcAddress(GetModuleHandleA(library), function));
}

const void* const kLoadStringW = Exported("user32", "LoadStringW");
const void* const kLoadStringA = Exported("user32", "LoadStringA");
const void* const kIsCharAlphaW = Exported("user32", "IsCharAlphaW");

BOOL WINAPI NeverAlpha(WCHAR) { return FALSE; }
BOOL WINAPI AlsoNeverAlpha(WCHAR) { return FALSE; }
const void* const kReplacement = reinterpret_cast<const void*>(&NeverAlpha);
const void* const kOtherReplacement = reinterpret_cast<const void*>(&AlsoNeverAlpha);

// The headers and import tables of a 64-bit image in the first of two
// reserved pages; the second is left uncommitted, for headers that run off
// the end. Two descriptors, "USER32.dll" and "other.dll", each with its
// address table as the loader would have bound it.
class FakeImage {
public:
    FakeImage(const Table& first, const Table& second) {
        base = static_cast<std::uint8_t*>(
            VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(base, kPage, MEM_COMMIT, PAGE_READWRITE);
        Dos().e_magic = IMAGE_DOS_SIGNATURE;
        Dos().e_lfanew = kHeaders;
        Headers().Signature = IMAGE_NT_SIGNATURE;
        Headers().FileHeader.SizeOfOptionalHeader = sizeof(IMAGE_OPTIONAL_HEADER64);
        Headers().OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR64_MAGIC;
        Headers().OptionalHeader.SizeOfImage = kPage;
        Headers().OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
        Headers().OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT] = {
            kDescriptors, 3 * sizeof(IMAGE_IMPORT_DESCRIPTOR)};
        auto* descriptors = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + kDescriptors);
        descriptors[0].Name = kFirstName;
        descriptors[0].FirstThunk = kFirstTable;
        descriptors[1].Name = kSecondName;
        descriptors[1].FirstThunk = kSecondTable;
        std::strcpy(reinterpret_cast<char*>(base + kFirstName), "USER32.dll");
        std::strcpy(reinterpret_cast<char*>(base + kSecondName), "other.dll");
        std::memcpy(base + kFirstTable, first.data(), first.size() * sizeof(void*));
        std::memcpy(base + kSecondTable, second.data(), second.size() * sizeof(void*));
        firstCount = first.size();
        secondCount = second.size();
    }
    FakeImage(const FakeImage&) = delete;
    FakeImage& operator=(const FakeImage&) = delete;
    ~FakeImage() { VirtualFree(base, 0, MEM_RELEASE); }

    HMODULE Module() const { return reinterpret_cast<HMODULE>(base); }
    IMAGE_DOS_HEADER& Dos() { return *reinterpret_cast<IMAGE_DOS_HEADER*>(base); }
    IMAGE_NT_HEADERS64& Headers() {
        return *reinterpret_cast<IMAGE_NT_HEADERS64*>(base + kHeaders);
    }
    Table First() const { return TableAt(kFirstTable, firstCount); }
    Table Second() const { return TableAt(kSecondTable, secondCount); }
    Bytes Content() const { return Bytes(base, base + kPage); }

    static constexpr DWORD kPage = 0x1000;

private:
    static constexpr DWORD kHeaders = 0x80;
    static constexpr DWORD kDescriptors = 0x200;
    static constexpr DWORD kFirstName = 0x280;
    static constexpr DWORD kSecondName = 0x290;
    static constexpr DWORD kFirstTable = 0x300;
    static constexpr DWORD kSecondTable = 0x600;

    Table TableAt(DWORD rva, std::size_t count) const {
        const auto* entries = reinterpret_cast<const void* const*>(base + rva);
        return Table(entries, entries + count);
    }

    std::uint8_t* base = nullptr;
    std::size_t firstCount = 0;
    std::size_t secondCount = 0;
};

// The loader bound LoadStringW under user32 and under another name.
FakeImage BoundTwice() {
    return FakeImage({kLoadStringW, kLoadStringA}, {kIsCharAlphaW, kLoadStringW});
}

TEST(HookProcInstall, RewritesEveryEntryOfTheRealAddressWhateverLibraryItIsImportedFrom) {
    for (const char* library : {"user32", "user32.DLL", "USER32.DLL"}) {
        FakeImage image = BoundTwice();
        EXPECT_EQ(HookProc_Install(image.Module(), library, "LoadStringW",
                                   const_cast<void*>(kReplacement)),
                  kLoadStringW)
            << library;
        EXPECT_EQ(image.First(), (Table{kReplacement, kLoadStringA})) << library;
        EXPECT_EQ(image.Second(), (Table{kIsCharAlphaW, kReplacement})) << library;

        const Bytes patched = image.Content();
        EXPECT_EQ(HookProc_Install(image.Module(), library, "LoadStringW",
                                   const_cast<void*>(kOtherReplacement)),
                  kLoadStringW);
        HookProc_UnInstall(image.Module(), library, "LoadStringW");
        EXPECT_EQ(image.Content(), patched)
            << "a second installation, and an uninstallation, change nothing";
    }
}

TEST(HookProcInstall, PatchesNothingWithoutTheFunctionAndGivesItsAddressWhereItIsNotImported) {
    const struct {
        const char* library;
        const char* function;
        const void* expected;
    } cases[] = {
        {"kt_never_loaded.dll", "LoadStringW", nullptr},
        {"user32", "KtNoSuchFunction", nullptr},
        {"user32", "MessageBoxA", Exported("user32", "MessageBoxA")},
    };
    for (const auto& c : cases) {
        FakeImage image = BoundTwice();
        const Bytes before = image.Content();
        EXPECT_EQ(HookProc_Install(image.Module(), c.library, c.function,
                                   const_cast<void*>(kReplacement)),
                  c.expected)
            << c.library << " " << c.function;
        EXPECT_EQ(image.Content(), before) << c.library << " " << c.function;
    }
}

TEST(HookProcInstall, LeavesHeadersThatAreNotThoseOfA64BitImageAlone) {
    const struct {
        const char* fault;
        std::function<void(FakeImage&)> breakHeaders;
    } cases[] = {
        {"no MZ", [](FakeImage& image) { image.Dos().e_magic = IMAGE_OS2_SIGNATURE; }},
        {"headers far away", [](FakeImage& image) { image.Dos().e_lfanew = 0x7FFFFFF0; }},
        {"headers into uncommitted memory",
         [](FakeImage& image) { image.Dos().e_lfanew = FakeImage::kPage - 8; }},
        {"no PE signature",
         [](FakeImage& image) { image.Headers().Signature = IMAGE_OS2_SIGNATURE; }},
        {"32-bit optional header",
         [](FakeImage& image) {
             image.Headers().FileHeader.SizeOfOptionalHeader = sizeof(IMAGE_OPTIONAL_HEADER32);
         }},
    };
    for (const auto& c : cases) {
        FakeImage image = BoundTwice();
        c.breakHeaders(image);
        const Bytes before = image.Content();
        EXPECT_EQ(HookProc_Install(image.Module(), "user32", "LoadStringW",
                                   const_cast<void*>(kReplacement)),
                  nullptr)
            << c.fault;
        EXPECT_EQ(image.Content(), before) << c.fault;
    }
}

TEST(HookProcInstall, ForANullModuleGivesAFunctionThatReturnsZero) {
    void* nothing =
        HookProc_Install(nullptr, "user32", "LoadStringW", const_cast<void*>(kReplacement));
    ASSERT_NE(nothing, nullptr);
    wchar_t buffer[8] = L"text";
    EXPECT_EQ(
        reinterpret_cast<decltype(&LoadStringW)>(nothing)(GetModuleHandleW(nullptr), 1, buffer, 8),
        0);
}

TEST(ResourceTranslation, InstallsEveryInterceptorAndTakesThemOutAgain) {
    Table real;
#define KT_REAL_ADDRESS(library, name) real.push_back(Exported(library, #name));
    KT_INTERCEPTED_FUNCTIONS(KT_REAL_ADDRESS)
#undef KT_REAL_ADDRESS
    FakeImage image(real, {kIsCharAlphaW});
    const Bytes before = image.Content();

    EXPECT_EQ(_InitResTranslation(nullptr), 0);
    EXPECT_EQ(_DeInitResTranslation(nullptr), 0);
    ASSERT_EQ(_InitResTranslation(image.Module()), 1);
    const Table patched = image.First();
    for (std::size_t i = 0; i < real.size(); ++i) {
        EXPECT_NE(real[i], nullptr) << i;
        EXPECT_NE(patched[i], real[i]) << i;
        EXPECT_NE(patched[i], nullptr) << i;
    }
    EXPECT_EQ(image.Second(), Table{kIsCharAlphaW});
    ASSERT_EQ(_DeInitResTranslation(image.Module()), 1);
    EXPECT_EQ(image.First(), real);
    EXPECT_EQ(image.Content(), before);
}

// The module of PatchTarget.cpp, and what it calls through its import.
class PatchTarget {
public:
    PatchTarget() : module(LoadLibraryA(KT_PATCH_TARGET_FILE)) {}
    PatchTarget(const PatchTarget&) = delete;
    PatchTarget& operator=(const PatchTarget&) = delete;
    ~PatchTarget() { FreeLibrary(module); }

    HMODULE Module() const { return module; }
    bool SeesAlpha() const {
        auto through = reinterpret_cast<BOOL (*)(WCHAR)>(
            reinterpret_cast<void*>(GetProcAddress(module, "IsCharAlphaThrough")));
        return through != nullptr && through(L'a') != FALSE;
    }
    Bytes Image() const {
        const auto* base = reinterpret_cast<const std::uint8_t*>(module);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(
            base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
        return Bytes(base, base + headers->OptionalHeader.SizeOfImage);
    }

private:
    HMODULE module;
};

TEST(ImportPatch, AModuleThatImportsNoneOfTheFunctionsIsLeftAsItIs) {
    PatchTarget target;
    ASSERT_NE(target.Module(), nullptr);
    const Bytes before = target.Image();
    EXPECT_EQ(_InitResTranslation(target.Module()), 1);
    EXPECT_EQ(target.Image(), before);
}

TEST(ImportPatch, AModuleLoadedAgainComesBackUnpatchedAndIsPatchedAgain) {
    for (int load = 0; load < 2; ++load) {
        PatchTarget target;
        ASSERT_NE(target.Module(), nullptr);
        EXPECT_TRUE(target.SeesAlpha()) << load;
        EXPECT_EQ(HookProc_Install(target.Module(), "user32", "IsCharAlphaW",
                                   const_cast<void*>(kReplacement)),
                  kIsCharAlphaW);
        EXPECT_FALSE(target.SeesAlpha()) << load;
    }
    EXPECT_EQ(GetModuleHandleA(KT_PATCH_TARGET_FILE), nullptr);
}

}  // namespace
}  // namespace kt::test
