// What Debian's olefile, a reader written apart from the platform and from
// us, sees in a compound file: the test's proof that a file is a true
// compound file with the names and bytes that were meant.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "tests/support/WideText.h"

namespace kt::test {

// What `script` (a Python program over olefile, given the file, an output
// path and `arguments`) writes; empty when the reader could not be run.
inline std::string IndependentListing(const char* script, const WideString& file,
                                      const std::string& arguments) {
    using UnixFileName = char*(CDECL*)(const WCHAR*);
    const auto unixFileName = reinterpret_cast<UnixFileName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernel32"), "wine_get_unix_file_name")));
    if (unixFileName == nullptr) {
        ADD_FAILURE() << "the independent reader runs under Wine only";
        return {};
    }
    const WideString listing = file + KTW(".tree");
    auto unixName = [&](const WideString& name) {
        char* converted = unixFileName(reinterpret_cast<const WCHAR*>(name.c_str()));
        std::string text = converted != nullptr ? converted : "";
        HeapFree(GetProcessHeap(), 0, converted);
        return text;
    };
    // Wine starts a Unix program for a Unix executable but neither waits for
    // it nor passes its exit code on: the listing tells, once it is there.
    // Its standard handles must be real files, so they get the null device.
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE nothing =
        CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE, 3, &inherited, OPEN_EXISTING, 0, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = startup.hStdOutput = startup.hStdError = nothing;
    std::string line = std::string("Z:\\usr\\bin\\python3 \"") + script + "\" \"" +
                       unixName(file) + "\" \"" + unixName(listing) + "\" " + arguments;
    PROCESS_INFORMATION process = {};
    const bool started = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        nullptr, &startup, &process);
    CloseHandle(nothing);
    if (!started) {
        ADD_FAILURE() << "could not start " << line;
        return {};
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    const std::filesystem::path listed(listing);
    for (int wait = 0; wait < 300 && !std::filesystem::exists(listed); ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    std::ifstream in(listed, std::ios::binary);
    if (!in) {
        ADD_FAILURE() << "the independent reader gave no listing: " << line;
        return {};
    }
    std::ostringstream text;
    text << in.rdbuf();
    in.close();
    std::filesystem::remove(listed);
    return text.str();
}

// The file's elements as ole_tree.py lists them, one line each. `rewrites`
// ("path=hex" each) are written by olefile first.
inline std::string IndependentTree(const WideString& file, const std::string& rewrites = "") {
    return IndependentListing(KT_OLE_TREE_SCRIPT, file, rewrites);
}

// The document properties as ole_properties.py lists them, one line each.
inline std::string IndependentProperties(const WideString& file) {
    return IndependentListing(KT_OLE_PROPERTIES_SCRIPT, file, "");
}

}  // namespace kt::test
