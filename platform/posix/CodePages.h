// The code pages the POSIX half knows, with what Windows reports of each: the
// ranges of lead bytes (the LeadByte ranges of GetCPInfo) and the name iconv
// knows it by.
#pragma once

namespace kt::sys::posix {

// Natively the ANSI code page is that of an English Windows.
constexpr unsigned kAnsiCodePage = 1252;

struct ByteRange {
    unsigned char first;
    unsigned char last;
};

struct CodePage {
    unsigned number;
    const char* iconvName;       // null: converted without iconv (UTF-8)
    ByteRange leadBytes[2];      // {0, 0} where unused
    unsigned short defaultWide;  // what an undefined double-byte sequence becomes

    bool IsDoubleByte() const { return leadBytes[0].first != 0; }
    bool IsLead(unsigned char byte) const {
        for (const ByteRange& range : leadBytes)
            if (range.first != 0 && byte >= range.first && byte <= range.last)
                return true;
        return false;
    }
};

// The description of `number`, with 0 standing for the ANSI code page, or
// null for a code page that is not known.
const CodePage* FindCodePage(unsigned number);

}  // namespace kt::sys::posix
