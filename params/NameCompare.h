// Names of sections and values compare without regard to the case of ASCII
// letters, as the hash of the memory tree folds them (the C locale's
// _stricmp).
#pragma once

namespace kt::params {

inline int CompareNoCase(const char* a, const char* b) {
    for (;; ++a, ++b) {
        const int ca = *a >= 'A' && *a <= 'Z' ? *a - 'A' + 'a' : static_cast<unsigned char>(*a);
        const int cb = *b >= 'A' && *b <= 'Z' ? *b - 'A' + 'a' : static_cast<unsigned char>(*b);
        if (ca != cb || ca == 0)
            return ca - cb;
    }
}

}  // namespace kt::params
