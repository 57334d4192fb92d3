// The `wld` reader on arbitrary bytes. The first byte chooses the multibyte
// code page the file is walked in; the rest is the file. Every pair must
// come out with its escapes undone, and the file must load into a dictionary
// whose entries all have a wide form.
#include <cstdint>
#include <string>

#include "fuzz/MemoryFiles.h"
#include "kticore/core/Exception.h"
#include "translation/SuppDictionary.h"
#include "translation/WldFile.h"
#include "translation/WldReader.h"

namespace {

using kt::fuzz::Check;

constexpr int kCodePages[] = {_MB_CP_ANSI, 932, 949};

bool IsLead(const char* p) { return _ismbblead(static_cast<unsigned char>(*p)) != 0 && p[1] != 0; }

// What is left of escapes: a backslash stands only before a character that
// it does not escape, and never at the end.
void CheckEscapesUndone(const char* text) {
    for (const char* p = text; *p != 0; p += IsLead(p) ? 2 : 1) {
        if (*p != '\\')
            continue;
        const char next = p[1];
        Check(next != 0 && next != '\\' && next != 'n' && next != 'r' && next != 't');
    }
}

void ReadPairs(const KTWCHAR* name) {
    IXFile* file = Fio_Open(name, 0);
    kt::WldReader reader(file);
    CXString key;
    CXString value;
    while (reader.Next(key, value)) {
        CheckEscapesUndone(key);
        CheckEscapesUndone(value);
    }
    file->Release();
}

void LoadAndWiden(const KTWCHAR* name) {
    kt::CSuppDictionary dictionary;
    dictionary.SetCodePage(0);
    kt::LoadWldFile(dictionary, name);
    CTMapPosition position;
    while (kt::CContext** entry = dictionary.texts.NextValue(position))
        Check((*entry)->WideForm() != nullptr);
    dictionary.SetCodePage(0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const int codePage = kCodePages[data[0] % (sizeof kCodePages / sizeof kCodePages[0])];
    const std::basic_string<KTWCHAR> name =
        kt::fuzz::SoleMemoryFile(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    if (name.empty())
        return 0;
    Check(_setmbcp(codePage) == 0);
    ReadPairs(name.c_str());
    LoadAndWiden(name.c_str());
    _setmbcp(_MB_CP_ANSI);
    return 0;
}
