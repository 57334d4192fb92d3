// The agent's entry: the dictionary first, so that the interceptors
// installed next find it loaded.
#include "tools/kttool/agent/Agent.h"

#include <cwchar>

#include "kticore/translation/Translation.h"
#include "tools/kttool/agent/AppModules.h"
#include "translation/DialogLayouts.h"
#include "translation/SuppDictionary.h"

DWORD WINAPI KtAgent_Start(void* paths) {
    const wchar_t* dictionary = static_cast<const wchar_t*>(paths);
    const wchar_t* layouts = dictionary + std::wcslen(dictionary) + 1;
    if (Supp_Init(dictionary) == 0)
        return kttool::agent::kDictionaryUnreadable;
    // An explicit layout file's dialogs take the place of the twin's.
    if (*layouts != L'\0' && kt::LoadDialogLayouts(kt::SuppDictionary(), layouts) == 0)
        return kttool::agent::kLayoutsUnreadable;
    kttool::agent::TakeNewModules();
    return kttool::agent::kStarted;
}
