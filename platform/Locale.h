// What the system knows of a Windows locale identifier: whether it is
// supported, and the ANSI code page of its language.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// The default ANSI code page of `locale` (LOCALE_IDEFAULTANSICODEPAGE) into
// `codePage`, when IsValidLocale(locale, LCID_SUPPORTED) holds and the system
// answers; false and `codePage` untouched otherwise. A locale of Unicode-only
// languages answers 0.
bool LocaleAnsiCodePage(unsigned locale, DWORD& codePage);

}  // namespace kt::sys
