// The POSIX implementation of code page conversion. Linux knows no code pages
// by number, so each one is read from iconv once, byte by byte and pair by
// pair, into tables that then answer as Windows does: an undefined single byte
// becomes the 16-bit unit of the same value (as 1252 does for 0x81), an
// undefined or cut-off double-byte sequence the code page's default character,
// and a unit a code page cannot hold '?'. UTF-8 is converted directly.
#include "platform/TextConversion.h"

#include <iconv.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/posix/CodePages.h"

namespace kt::sys {

namespace {

using posix::CodePage;

// Counts what a conversion produces and writes it while it fits.
template <class Unit>
class Output {
public:
    Output(Unit* out, int capacity) : out(out), capacity(out != nullptr ? capacity : 0) {}

    void Put(Unit unit) {
        if (count < capacity)
            out[count] = unit;
        ++count;
    }

    // The result of the Win32 functions: the number needed when only asked,
    // 0 when it does not fit.
    int Result() const { return capacity == 0 || count <= capacity ? count : 0; }

private:
    Unit* out;
    int capacity;
    int count = 0;
};

class ConversionTable {
public:
    explicit ConversionTable(const CodePage& page)
        : page(page), toWide(page.IsDoubleByte() ? 0x10000 : 0x100), fromWide(0x10000) {
        iconv_t converter = iconv_open("UTF-16LE", page.iconvName);
        if (converter == reinterpret_cast<iconv_t>(-1))
            return;
        for (unsigned byte = 1; byte < 0x100; ++byte) {
            if (page.IsLead(static_cast<unsigned char>(byte))) {
                for (unsigned trail = 1; trail < 0x100; ++trail) {
                    const unsigned char pair[2] = {static_cast<unsigned char>(byte),
                                                   static_cast<unsigned char>(trail)};
                    toWide[byte << 8 | trail] = Decode(converter, pair, 2);
                }
            } else {
                const unsigned char single = static_cast<unsigned char>(byte);
                char16_t unit = Decode(converter, &single, 1);
                toWide[byte] = unit != 0 ? unit : UndefinedSingleByte(byte);
            }
        }
        iconv_close(converter);
        // The way back takes the lowest code for a unit that several codes
        // give; single bytes come first.
        for (unsigned code = 1; code < toWide.size(); ++code)
            if (toWide[code] != 0 && fromWide[toWide[code]] == 0)
                fromWide[toWide[code]] = static_cast<unsigned short>(code);
    }

    int ToWide(const unsigned char* text, int size, Output<KTWCHAR>& out) const {
        for (int i = 0; i < size;) {
            unsigned byte = text[i];
            if (page.IsLead(static_cast<unsigned char>(byte))) {
                // A lead byte takes the next byte with it, whatever it is.
                char16_t unit = i + 1 < size ? toWide[byte << 8 | text[i + 1]] : 0;
                out.Put(unit != 0 ? unit : static_cast<KTWCHAR>(page.defaultWide));
                i += 2;
            } else {
                out.Put(toWide[byte]);
                ++i;
            }
        }
        return out.Result();
    }

    int ToMultiByte(const KTWCHAR* text, int size, Output<char>& out) const {
        for (int i = 0; i < size; ++i) {
            unsigned code = text[i] == 0 ? 0 : fromWide[text[i]];
            if (text[i] != 0 && code == 0)
                code = '?';
            if (code > 0xFF)
                out.Put(static_cast<char>(code >> 8));
            out.Put(static_cast<char>(code & 0xFF));
        }
        return out.Result();
    }

private:
    // One character's bytes to one 16-bit unit, or 0 if iconv has none.
    static char16_t Decode(iconv_t converter, const unsigned char* bytes, size_t size) {
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes));
        unsigned char result[8];
        char* outCursor = reinterpret_cast<char*>(result);
        size_t inLeft = size, outLeft = sizeof result;
        if (iconv(converter, &in, &inLeft, &outCursor, &outLeft) == static_cast<size_t>(-1) ||
            inLeft != 0)
            return 0;
        // Code pages with combining marks hold a base character back.
        iconv(converter, nullptr, nullptr, &outCursor, &outLeft);
        if (sizeof result - outLeft != 2)
            return 0;
        return static_cast<char16_t>(result[0] | result[1] << 8);
    }

    // What Windows gives for single bytes that a code page leaves undefined.
    char16_t UndefinedSingleByte(unsigned byte) const {
        if (page.number == 932 && byte == 0xA0)
            return 0xF8F0;
        if (page.number == 932 && byte >= 0xFD)
            return static_cast<char16_t>(0xF8F1 + (byte - 0xFD));
        return static_cast<char16_t>(byte);
    }

    const CodePage& page;
    std::vector<char16_t> toWide;          // by byte, or by lead << 8 | trail
    std::vector<unsigned short> fromWide;  // by unit: the byte, or lead << 8 | trail
};

const ConversionTable& TableFor(const CodePage& page) {
    static std::mutex lock;
    static std::map<unsigned, std::unique_ptr<ConversionTable>> tables;
    std::lock_guard<std::mutex> hold(lock);
    std::unique_ptr<ConversionTable>& table = tables[page.number];
    if (!table)
        table = std::make_unique<ConversionTable>(page);
    return *table;
}

constexpr char16_t kReplacement = 0xFFFD;

int Utf8ToWide(const unsigned char* text, int size, Output<KTWCHAR>& out) {
    for (int i = 0; i < size;) {
        unsigned byte = text[i];
        int length = byte < 0x80                    ? 1
                     : byte >= 0xC2 && byte <= 0xDF ? 2
                     : byte >= 0xE0 && byte <= 0xEF ? 3
                     : byte >= 0xF0 && byte <= 0xF4 ? 4
                                                    : 0;
        if (length == 1) {
            out.Put(static_cast<KTWCHAR>(byte));
            ++i;
            continue;
        }
        unsigned code = length == 0 ? 0 : byte & (0x7F >> length);
        int taken = 1;
        for (; length != 0 && taken < length && i + taken < size; ++taken) {
            unsigned next = text[i + taken];
            // The second byte's range also excludes overlong forms, surrogates
            // and code points past U+10FFFF.
            unsigned low = 0x80, high = 0xBF;
            if (taken == 1 && byte == 0xE0)
                low = 0xA0;
            if (taken == 1 && byte == 0xED)
                high = 0x9F;
            if (taken == 1 && byte == 0xF0)
                low = 0x90;
            if (taken == 1 && byte == 0xF4)
                high = 0x8F;
            if (next < low || next > high)
                break;
            code = code << 6 | (next & 0x3F);
        }
        if (length == 0 || taken != length) {
            out.Put(kReplacement);  // one for the longest valid beginning
            i += taken;
            continue;
        }
        if (code >= 0x10000) {
            code -= 0x10000;
            out.Put(static_cast<KTWCHAR>(0xD800 | code >> 10));
            out.Put(static_cast<KTWCHAR>(0xDC00 | (code & 0x3FF)));
        } else {
            out.Put(static_cast<KTWCHAR>(code));
        }
        i += length;
    }
    return out.Result();
}

int WideToUtf8(const KTWCHAR* text, int size, Output<char>& out) {
    for (int i = 0; i < size; ++i) {
        unsigned code = text[i];
        if (code >= 0xD800 && code <= 0xDBFF && i + 1 < size && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (code >= 0xD800 && code <= 0xDFFF) {
            code = kReplacement;
        }
        if (code < 0x80) {
            out.Put(static_cast<char>(code));
        } else if (code < 0x800) {
            out.Put(static_cast<char>(0xC0 | code >> 6));
            out.Put(static_cast<char>(0x80 | (code & 0x3F)));
        } else if (code < 0x10000) {
            out.Put(static_cast<char>(0xE0 | code >> 12));
            out.Put(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
            out.Put(static_cast<char>(0x80 | (code & 0x3F)));
        } else {
            out.Put(static_cast<char>(0xF0 | code >> 18));
            out.Put(static_cast<char>(0x80 | (code >> 12 & 0x3F)));
            out.Put(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
            out.Put(static_cast<char>(0x80 | (code & 0x3F)));
        }
    }
    return out.Result();
}

}  // namespace

int MultiByteToWide(unsigned codePage, const char* text, int size, KTWCHAR* out, int capacity) {
    const CodePage* page = posix::FindCodePage(codePage);
    if (page == nullptr || size <= 0)
        return 0;
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
    Output<KTWCHAR> output(out, capacity);
    if (page->number == kUtf8CodePage)
        return Utf8ToWide(bytes, size, output);
    return TableFor(*page).ToWide(bytes, size, output);
}

int WideToMultiByte(unsigned codePage, const KTWCHAR* text, int size, char* out, int capacity) {
    const CodePage* page = posix::FindCodePage(codePage);
    if (page == nullptr || size <= 0)
        return 0;
    Output<char> output(out, capacity);
    if (page->number == kUtf8CodePage)
        return WideToUtf8(text, size, output);
    return TableFor(*page).ToMultiByte(text, size, output);
}

}  // namespace kt::sys
