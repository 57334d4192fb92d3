// The `dlg` layout reader on arbitrary bytes, into a dictionary of its own:
// it loads or answers 0 and throws nothing. Loaded twice, every layout replaces its first
// definition, so the count of layouts stays.
#include <cstdint>
#include <string>

#include "fuzz/MemoryFiles.h"
#include "translation/DialogLayouts.h"
#include "translation/SuppDictionary.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    kt::fuzz::DisarmMemoryNames(text);
    const std::basic_string<KTWCHAR> name = kt::fuzz::SoleMemoryFile(text);
    if (name.empty())
        return 0;
    kt::CSuppDictionary dictionary;
    const int loaded = kt::LoadDialogLayouts(dictionary, name.c_str());
    kt::fuzz::Check(loaded == 1 || loaded == 0);
    const DWORD layouts = dictionary.dialogs.GetCount();
    kt::fuzz::Check(kt::LoadDialogLayouts(dictionary, name.c_str()) == loaded);
    kt::fuzz::Check(dictionary.dialogs.GetCount() == layouts);
    return 0;
}
