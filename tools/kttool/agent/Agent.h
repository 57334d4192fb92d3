// What `kttool run` and its agent agree on. The agent is a DLL that kttool
// loads into the application it runs, beside kticore; kttool then starts
// the agent's entry on a thread of the application, before the
// application's own first instruction.
#pragma once

#include <windows.h>

#if defined(KTTOOL_AGENT_BUILDING)
#    define KTTOOL_AGENT_API extern "C" __declspec(dllexport)
#else
#    define KTTOOL_AGENT_API extern "C" __declspec(dllimport)
#endif

namespace kttool::agent {

// The entry's exit codes.
enum StartResult : DWORD {
    kStarted = 0,
    kDictionaryUnreadable = 1,
    kLayoutsUnreadable = 2,
};

}  // namespace kttool::agent

// Loads the dictionary and translates the application: every module it has
// loaded, and each it loads later through LoadLibrary. `paths`, in the
// application's memory: the dictionary's path, a null character, the
// layout file's path (empty for the dictionary's twin), a null character.
// A StartResult.
KTTOOL_AGENT_API DWORD WINAPI KtAgent_Start(void* paths);
