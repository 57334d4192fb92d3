// Loading translation files: the dictionary, then its layout twin of the same
// name; a memory name has no twin, since any other name names the same block. A dictionary file that fails is answered with 0, never thrown: the
// texts stay as they were, with the pairs read before the failure.
#include "kticore/core/Exception.h"
#include "kticore/translation/Translation.h"
#include "files/MemoryName.h"
#include "translation/DialogLayouts.h"
#include "translation/WldFile.h"
#if defined(_WIN32)
#    include "translation/intercept/Installation.h"
#endif

namespace {

using kt::CSuppDictionary;

constexpr KTWCHAR kLayoutExtension[] = KTW("dlg");

// A null path names "app.wld" in the current directory, and nothing else.
const KTWCHAR* DictionaryPath(const KTWCHAR* path) {
    return path != nullptr ? path : KTW("app.wld");
}

// 1, or 0 when the dictionary file failed; the layout file does not count.
int LoadFiles(CSuppDictionary& dictionary, const KTWCHAR* path) {
    try {
        kt::LoadWldFile(dictionary, path);
    } catch (const CXFileException&) {
        return 0;
    }
    if (kt::IsMemoryName(path))
        return 1;
    CXStringW layouts(path);
    layouts.ChangeFileExt(kLayoutExtension);
    kt::LoadDialogLayouts(dictionary, layouts);
    return 1;
}

}  // namespace

int Supp_Init(const KTWCHAR* path) {
    CSuppDictionary& dictionary = kt::SuppDictionary();
    if (dictionary.initialised != 0 || LoadFiles(dictionary, DictionaryPath(path)) == 0)
        return 0;
    dictionary.initialised = 1;
#if defined(_WIN32)
    kt::InstallInFrameworkModules();
#endif
    return 1;
}

int Supp_AddWld(const KTWCHAR* path) {
    CSuppDictionary& dictionary = kt::SuppDictionary();
    if (dictionary.initialised == 0)
        return Supp_Init(path);
    return LoadFiles(dictionary, DictionaryPath(path));
}
