// The Win32 half of locale questions.
#include "platform/Locale.h"

namespace kt::sys {

bool LocaleAnsiCodePage(unsigned locale, DWORD& codePage) {
    if (!IsValidLocale(locale, LCID_SUPPORTED))
        return false;
    // With LOCALE_RETURN_NUMBER the answer is the number itself, 4 bytes.
    return GetLocaleInfoW(locale, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                          reinterpret_cast<LPWSTR>(&codePage),
                          sizeof codePage / sizeof(WCHAR)) != 0;
}

}  // namespace kt::sys
