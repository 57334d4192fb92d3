// Points the system's temporary directory (TMP and TEMP on Windows, TMPDIR
// natively) at a scratch directory of the test's own while it lives, so that
// a test sees every temporary file the library makes or leaves.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "tests/support/ScratchDirectory.h"

namespace kt::test {

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        for (const char* variable : kVariables) {
            const char* value = std::getenv(variable);
            saved.emplace_back(value != nullptr ? std::optional<std::string>(value) : std::nullopt);
            Set(variable, Narrow(scratch.Path()));
        }
    }
    ~TemporaryDirectory() {
        for (size_t index = 0; index < std::size(kVariables); ++index)
            Set(kVariables[index], saved[index].value_or(""));
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    // The files in it, and a name inside it.
    std::vector<WideString> Entries() const { return scratch.Entries(); }
    WideString operator/(const WideString& leaf) const { return scratch / leaf; }

private:
#if defined(_WIN32)
    static constexpr const char* kVariables[] = {"TMP", "TEMP"};
    static void Set(const char* variable, const std::string& value) {
        _putenv_s(variable, value.c_str());
        ::SetEnvironmentVariableA(variable, value.empty() ? nullptr : value.c_str());
    }
#else
    static constexpr const char* kVariables[] = {"TMPDIR"};
    static void Set(const char* variable, const std::string& value) {
        if (value.empty())
            unsetenv(variable);
        else
            setenv(variable, value.c_str(), 1);
    }
#endif
    // Scratch names are ASCII.
    static std::string Narrow(const WideString& wide) {
        return std::string(wide.begin(), wide.end());
    }

    ScratchDirectory scratch;
    std::vector<std::optional<std::string>> saved;
};

}  // namespace kt::test
