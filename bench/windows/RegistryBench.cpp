// A tree of 10,000 values (100 sections of 100) written to and read from the
// registry through the registry tree, against the platform's registry
// functions storing and reading the same bytes under the same keys, in the
// same run. Target: at most 1.3x.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/harness/TimingHarness.h"
#include "kticore/params/RegistryParam.h"

namespace {

constexpr wchar_t kBenchKey[] = L"Software\\kticore-bench\\registry";
constexpr int kSections = 100;
constexpr int kValuesPerSection = 100;
constexpr int kRounds = 5;
constexpr double kValues = kSections * kValuesPerSection;

struct Names {
    std::vector<std::string> sections;
    std::vector<std::string> values;
};

// Every other value is text, the others numbers.
bool IsText(int value) { return value % 2 == 0; }
const char kText[] = "a value of some thirty characters";

// The bytes the tree stores for the number `value`: its kind, then its value.
struct NumberBytes {
    ULONG kind = KTVT_INT;
    int value;
};

void WriteThroughTree(IParam* root, const Names& names) {
    for (const std::string& sectionName : names.sections) {
        IParam* section = root->GetSection(sectionName.c_str(), 1);
        for (int v = 0; v < kValuesPerSection; ++v) {
            const CKTVariant value = IsText(v) ? CKTVariant(kText) : CKTVariant(v);
            section->SetValue(names.values[v].c_str(), &value);
        }
        section->Release();
    }
}

void ReadThroughTree(IParam* root, const Names& names) {
    for (const std::string& sectionName : names.sections) {
        IParam* section = root->GetSection(sectionName.c_str(), 0);
        for (int v = 0; v < kValuesPerSection; ++v) {
            CKTVariant value;
            section->GetValue(names.values[v].c_str(), &value);
        }
        section->Release();
    }
}

void WriteThroughPlatform(HKEY root, const Names& names) {
    for (const std::string& sectionName : names.sections) {
        HKEY section;
        RegCreateKeyExA(root, sectionName.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &section, nullptr);
        for (int v = 0; v < kValuesPerSection; ++v) {
            const NumberBytes number{KTVT_INT, v};
            if (IsText(v))
                RegSetValueExA(section, names.values[v].c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(kText),
                               sizeof kText);
            else
                RegSetValueExA(section, names.values[v].c_str(), 0, REG_BINARY,
                               reinterpret_cast<const BYTE*>(&number), sizeof number);
        }
        RegCloseKey(section);
    }
}

void ReadThroughPlatform(HKEY root, const Names& names) {
    for (const std::string& sectionName : names.sections) {
        HKEY section;
        RegOpenKeyExA(root, sectionName.c_str(), 0, KEY_ALL_ACCESS, &section);
        for (int v = 0; v < kValuesPerSection; ++v) {
            BYTE data[256];
            DWORD size = sizeof data;
            DWORD type;
            RegQueryValueExA(section, names.values[v].c_str(), nullptr, &type, data, &size);
        }
        RegCloseKey(section);
    }
}

}  // namespace

int main() {
    Names names;
    for (int s = 0; s < kSections; ++s)
        names.sections.push_back("section " + std::to_string(s));
    for (int v = 0; v < kValuesPerSection; ++v)
        names.values.push_back("value " + std::to_string(v));

    HKEY raw;
    RegCreateKeyExW(HKEY_CURRENT_USER, kBenchKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &raw, nullptr);
    IParam* root = new_IParamCUReg(kBenchKey);
    if (root == nullptr) {
        std::printf("cannot open the bench key\n");
        return 1;
    }

    kt::bench::PrintRatioHeader();
    const auto write = kt::bench::NanosecondsPerCallInTurn([&] { WriteThroughTree(root, names); },
                                                           [&] { WriteThroughPlatform(raw, names); }, 1, kRounds);
    kt::bench::PrintRatio("write, ns a value", "RegSetValueExA", write.ours / kValues, write.theirs / kValues);
    const auto read = kt::bench::NanosecondsPerCallInTurn([&] { ReadThroughTree(root, names); },
                                                          [&] { ReadThroughPlatform(raw, names); }, 1, kRounds);
    kt::bench::PrintRatio("read, ns a value", "RegQueryValueExA", read.ours / kValues, read.theirs / kValues);

    root->Release();
    RegCloseKey(raw);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\kticore-bench");
    return 0;
}
