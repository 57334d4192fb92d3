// A parameter tree in a compound file, against the platform's own OLE calls
// laying out the same tree: 100 sections of 100 values each (numbers and
// short texts in turn), written into a new compound file in the temporary
// directory and read back, the file released in between.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/harness/TimingHarness.h"
#include "kticore/params/StorageParam.h"
#include "kticore/storage/CompoundStorage.h"

namespace {

constexpr int kSections = 100;
constexpr int kValuesPerSection = 100;
constexpr DWORD kChildMode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kFileMode = kChildMode | STGM_CREATE;

std::string SectionName(int section) { return "section " + std::to_string(section); }
std::string ValueName(int value) { return "value " + std::to_string(value); }
std::wstring Wide(const std::string& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

CKTVariant ValueOf(int section, int value) {
    const int n = section * kValuesPerSection + value;
    return n % 2 == 0 ? CKTVariant(n) : CKTVariant(("text " + std::to_string(n)).c_str());
}

// The stored form of a value, as the peer writes it by hand: the kind, then
// a number, or a counted text with its terminator.
std::string StoredForm(const CKTVariant& value) {
    std::string bytes(reinterpret_cast<const char*>(&value.vt), sizeof value.vt);
    if (value.vt == KTVT_STR) {
        const ULONG size = static_cast<ULONG>(std::strlen(value.pszVal) + 1);
        bytes.append(reinterpret_cast<const char*>(&size), sizeof size).append(value.pszVal, size);
    } else {
        bytes.append(reinterpret_cast<const char*>(&value.intVal), sizeof value.intVal);
    }
    return bytes;
}

struct Fixture {
    std::vector<std::string> sectionNames, valueNames;
    std::vector<std::wstring> wideSectionNames, wideValueNames;
    std::vector<CKTVariant> values;
    std::vector<std::string> storedForms;
    std::wstring path;

    Fixture() {
        for (int s = 0; s < kSections; ++s) {
            sectionNames.push_back(SectionName(s));
            wideSectionNames.push_back(Wide(sectionNames.back()));
        }
        for (int v = 0; v < kValuesPerSection; ++v) {
            valueNames.push_back(ValueName(v));
            wideValueNames.push_back(Wide(valueNames.back()));
        }
        for (int s = 0; s < kSections; ++s)
            for (int v = 0; v < kValuesPerSection; ++v) {
                values.push_back(ValueOf(s, v));
                storedForms.push_back(StoredForm(values.back()));
            }
        wchar_t directory[MAX_PATH], name[MAX_PATH];
        GetTempPathW(MAX_PATH, directory);
        GetTempFileNameW(directory, L"KTPR", 0, name);
        path = name;
    }
};

// How many values each side read back as they were written, to be sure both
// did the whole work.
using Tally = long;

void ThroughTheTree(const Fixture& fixture, Tally& tally) {
    IXStorage* storage = new_Storage(fixture.path.c_str(), 0);
    IParam* root = new_IXStorParam(storage);
    storage->Release();
    for (int s = 0; s < kSections; ++s) {
        IParam* section = root->GetSection(fixture.sectionNames[s].c_str(), 1);
        for (int v = 0; v < kValuesPerSection; ++v)
            section->SetValue(fixture.valueNames[v].c_str(),
                              &fixture.values[s * kValuesPerSection + v]);
        section->Release();
    }
    root->Release();

    storage = open_Storage(fixture.path.c_str(), 1);
    root = new_IXStorParam(storage);
    storage->Release();
    tally = 0;
    CKTVariant value;
    for (int s = 0; s < kSections; ++s) {
        IParam* section = root->GetSection(fixture.sectionNames[s].c_str(), 0);
        for (int v = 0; v < kValuesPerSection; ++v) {
            section->GetValue(fixture.valueNames[v].c_str(), &value);
            tally += value == fixture.values[s * kValuesPerSection + v];
        }
        section->Release();
    }
    root->Release();
}

void ThroughOle(const Fixture& fixture, Tally& tally) {
    IStorage* root = nullptr;
    StgCreateDocfile(fixture.path.c_str(), kFileMode, 0, &root);
    ULONG moved = 0;
    for (int s = 0; s < kSections; ++s) {
        IStorage* section = nullptr;
        root->CreateStorage(fixture.wideSectionNames[s].c_str(), kFileMode, 0, 0, &section);
        for (int v = 0; v < kValuesPerSection; ++v) {
            const std::string& bytes = fixture.storedForms[s * kValuesPerSection + v];
            IStream* stream = nullptr;
            section->CreateStream(fixture.wideValueNames[v].c_str(), kFileMode, 0, 0, &stream);
            stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &moved);
            stream->Release();
        }
        section->Release();
    }
    root->Release();

    StgOpenStorage(fixture.path.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                   &root);
    tally = 0;
    char buffer[64];
    for (int s = 0; s < kSections; ++s) {
        IStorage* section = nullptr;
        root->OpenStorage(fixture.wideSectionNames[s].c_str(), nullptr,
                          STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0, &section);
        for (int v = 0; v < kValuesPerSection; ++v) {
            IStream* stream = nullptr;
            section->OpenStream(fixture.wideValueNames[v].c_str(), nullptr,
                                STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream);
            stream->Read(buffer, sizeof buffer, &moved);
            const std::string& bytes = fixture.storedForms[s * kValuesPerSection + v];
            tally += moved == bytes.size() && std::memcmp(buffer, bytes.data(), moved) == 0;
            stream->Release();
        }
        section->Release();
    }
    root->Release();
}

}  // namespace

int main() {
    const Fixture fixture;
    Tally ours = 0, theirs = 0;
    const kt::bench::PairOfFigures figures = kt::bench::NanosecondsPerCallInTurn(
        [&] { ThroughTheTree(fixture, ours); }, [&] { ThroughOle(fixture, theirs); }, 1, 5);
    DeleteFileW(fixture.path.c_str());
    kt::bench::PrintRatioHeader("ms");
    kt::bench::PrintRatio("Tree of 10000 values (ms)", "raw OLE streams", figures.ours / 1e6,
                          figures.theirs / 1e6);
    const long expected = kSections * kValuesPerSection;
    if (ours != expected || theirs != expected)
        std::printf("read back %ld and %ld of %ld values\n", ours, theirs, expected);
    return 0;
}
