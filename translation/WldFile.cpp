#include "translation/WldFile.h"

#include "kticore/core/Exception.h"
#include "kticore/files/File.h"
#include "params/Held.h"
#include "platform/Locale.h"
#include "translation/WldReader.h"

namespace kt {

void LoadWldFile(CSuppDictionary& dictionary, const KTWCHAR* path) {
    params::Held<IXFile> file(Fio_Open(path, 0));
    // Fio_Open answers null where memory ran out.
    if (file.get() == nullptr)
        throw CXFileException(XE_NO_MEMORY, path, XFILEOP_OPEN);
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
