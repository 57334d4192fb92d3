#include "translation/WldFile.h"

#include "files/OpenOrThrow.h"
#include "params/Held.h"
#include "platform/Locale.h"
#include "translation/WldReader.h"

namespace kt {

void LoadWldFile(CSuppDictionary& dictionary, const KTWCHAR* path) {
    params::Held<IXFile> file(OpenOrThrow(path, 0));
    WldReader reader(file.get());
    CXString key;
    CXString value;
    while (reader.Next(key, value))
        dictionary.Add(key, value);
    DWORD codePage = 0;
    if (reader.LanguageId() != 0 && sys::LocaleAnsiCodePage(reader.LanguageId(), codePage))
        dictionary.SetCodePage(codePage);
}

}  // namespace kt
