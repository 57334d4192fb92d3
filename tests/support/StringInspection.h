// Looks at the buffer header that lies in front of a string's text.
#pragma once

#include "kticore/platform/Platform.h"
#include "kticore/strings/StringData.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"

namespace kt::test {

template <class Unit>
const CXStringData& HeaderOf(const Unit* text) {
    return *(reinterpret_cast<const CXStringData*>(text) - 1);
}

inline const CXStringData& HeaderOf(const CXString& s) {
    return HeaderOf(static_cast<const char*>(s));
}

inline const CXStringData& HeaderOf(const CXStringW& s) {
    return HeaderOf(static_cast<const KTWCHAR*>(s));
}

// Makes a multibyte code page current for a test's scope, then the ANSI one.
class ScopedCodePage {
public:
    explicit ScopedCodePage(int codePage) { ok = _setmbcp(codePage) == 0; }
    ScopedCodePage(const ScopedCodePage&) = delete;
    ScopedCodePage& operator=(const ScopedCodePage&) = delete;
    ~ScopedCodePage() { _setmbcp(_MB_CP_ANSI); }

    bool ok;
};

}  // namespace kt::test
