// The table of known code pages.
#include "platform/posix/CodePages.h"

#include <iterator>

namespace kt::sys::posix {

namespace {

// clang-format off
constexpr CodePage kCodePages[] = {
    {874,   "CP874",  {{0, 0}, {0, 0}},       0x3F},
    {932,   "CP932",  {{0x81, 0x9F}, {0xE0, 0xFC}}, 0x30FB},
    {936,   "CP936",  {{0x81, 0xFE}, {0, 0}},  0x3F},
    {949,   "CP949",  {{0x81, 0xFE}, {0, 0}},  0x3F},
    {950,   "CP950",  {{0x81, 0xFE}, {0, 0}},  0x3F},
    {1250,  "CP1250", {{0, 0}, {0, 0}},       0x3F},
    {1251,  "CP1251", {{0, 0}, {0, 0}},       0x3F},
    {1252,  "CP1252", {{0, 0}, {0, 0}},       0x3F},
    {1253,  "CP1253", {{0, 0}, {0, 0}},       0x3F},
    {1254,  "CP1254", {{0, 0}, {0, 0}},       0x3F},
    {1255,  "CP1255", {{0, 0}, {0, 0}},       0x3F},
    {1256,  "CP1256", {{0, 0}, {0, 0}},       0x3F},
    {1257,  "CP1257", {{0, 0}, {0, 0}},       0x3F},
    {1258,  "CP1258", {{0, 0}, {0, 0}},       0x3F},
    {65001, nullptr,  {{0, 0}, {0, 0}},       0xFFFD},
};
// clang-format on

}  // namespace

const CodePage* FindCodePage(unsigned number) {
    if (number == 0)
        number = kAnsiCodePage;
    for (const CodePage& page : kCodePages)
        if (page.number == number)
            return &page;
    return nullptr;
}

}  // namespace kt::sys::posix
