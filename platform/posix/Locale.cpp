// The POSIX half of locale questions. Linux knows no Windows locale numbers:
// a small table holds the languages that translations are tested with, and
// each one's ANSI code page as Windows reports it.
#include "platform/Locale.h"

namespace kt::sys {

namespace {

struct LocaleCodePage {
    unsigned locale;
    DWORD codePage;
};

constexpr LocaleCodePage kLocales[] = {
    {1025, 1256},  // Arabic (Saudi Arabia)
    {1028, 950},   // Chinese (Taiwan)
    {1029, 1250},  // Czech
    {1031, 1252},  // German (Germany)
    {1032, 1253},  // Greek
    {1033, 1252},  // English (United States)
    {1036, 1252},  // French (France)
    {1037, 1255},  // Hebrew
    {1041, 932},   // Japanese
    {1042, 949},   // Korean
    {1045, 1250},  // Polish
    {1049, 1251},  // Russian
    {1054, 874},   // Thai
    {1055, 1254},  // Turkish
    {1061, 1257},  // Estonian
    {1066, 1258},  // Vietnamese
    {1081, 0},     // Hindi: Unicode only
    {2052, 936},   // Chinese (PRC)
};

}  // namespace

bool LocaleAnsiCodePage(unsigned locale, DWORD& codePage) {
    for (const LocaleCodePage& known : kLocales) {
        if (known.locale == locale) {
            codePage = known.codePage;
            return true;
        }
    }
    return false;
}

}  // namespace kt::sys
