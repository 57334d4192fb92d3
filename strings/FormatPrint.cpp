// The printing half of the format engine. Text, characters, integers and
// pointers are laid out here; the digits of reals come from the C library's
// snprintf, which prints them alike on both builds (two exponent digits,
// "inf", "nan").
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <type_traits>

#include "platform/TextConversion.h"
#include "strings/FormatConversion.h"
#include "strings/FormatEngine.h"
#include "strings/MultiByteText.h"

namespace kt::format {

namespace {

// Writes while there is room and counts everything.
template <class Unit>
class Sink {
public:
    Sink(Unit* out, size_t capacity) : out(out), capacity(out != nullptr ? capacity : 0) {}

    void Put(Unit unit) {
        if (count + 1 < capacity)
            out[count] = unit;
        ++count;
    }
    void Fill(Unit unit, long long times) {
        for (; times > 0; --times)
            Put(unit);
    }
    template <class Other>
    void Write(const Other* text, size_t size) {
        for (size_t i = 0; i < size; ++i)
            Put(static_cast<Unit>(text[i]));
    }
    void Terminate() {
        if (capacity != 0)
            out[count < capacity ? count : capacity - 1] = 0;
    }
    size_t Count() const { return count; }

private:
    Unit* out;
    size_t capacity;
    size_t count = 0;
};

template <class Unit>
using Text = std::basic_string<Unit>;

// Text of the other width, converted in the ANSI code page.
Text<KTWCHAR> Converted(const char* text, size_t size) {
    Text<KTWCHAR> wide(size, 0);  // never more units than bytes
    const int units = sys::MultiByteToWide(sys::kAnsiCodePage, text, static_cast<int>(size),
                                           &wide[0], static_cast<int>(size));
    wide.resize(static_cast<size_t>(units > 0 ? units : 0));
    return wide;
}
Text<char> Converted(const KTWCHAR* text, size_t size) {
    const int needed =
        sys::WideToMultiByte(sys::kAnsiCodePage, text, static_cast<int>(size), nullptr, 0);
    Text<char> narrow(static_cast<size_t>(needed > 0 ? needed : 0), 0);
    if (needed > 0)
        sys::WideToMultiByte(sys::kAnsiCodePage, text, static_cast<int>(size), &narrow[0], needed);
    return narrow;
}

// The first units of `text`, at most `limit`, cut behind a whole character.
size_t Clip(const char* text, size_t size, size_t limit) {
    size_t clipped = 0;
    for (const char* p = text; clipped < size && clipped + mbcs::CharSize(p) <= limit;
         p = mbcs::Next(p))
        clipped += mbcs::CharSize(p);
    return clipped;
}
size_t Clip(const KTWCHAR*, size_t size, size_t limit) { return std::min(size, limit); }

template <class Unit>
class Printer {
public:
    Printer(Unit* out, size_t capacity, va_list args) : sink(out, capacity) {
        va_copy(this->args.list, args);
    }
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    ~Printer() { va_end(args.list); }

    size_t Run(const Unit* format) {
        for (const Unit* p = format; *p != 0;) {
            if (*p != '%') {
                sink.Put(*p++);
                continue;
            }
            if (p[1] == '%') {
                sink.Put('%');
                p += 2;
                continue;
            }
            Conversion<Unit> conversion;
            p = ReadConversion(p + 1, args, conversion);
            if (conversion.letter == 0)
                break;
            PrintConversion(conversion);
        }
        sink.Terminate();
        return sink.Count();
    }

private:
    static constexpr bool kWideFormat = sizeof(Unit) == sizeof(KTWCHAR);

    void PrintConversion(const Conversion<Unit>& c) {
        switch (c.kind()) {
            case Kind::Char:
                return PrintChar(c);
            case Kind::Text:
                return PrintText(c);
            case Kind::Float:
                return PrintReal(c);
            case Kind::Integer:
                return PrintInteger(c);
            case Kind::Pointer:
                return PrintPointer(c);
            case Kind::Count:
                if (int* count = va_arg(args.list, int*))
                    *count = static_cast<int>(sink.Count());
                return;
            case Kind::Unknown:
                sink.Put(c.letter);
                return;
        }
    }

    bool LeftAligned(const Conversion<Unit>& c) const { return c.leftAlign || c.width < 0; }

    // Pads `body` to the field width: blanks, or zeros where asked for.
    void Field(const Conversion<Unit>& c, const Unit* body, size_t size, Unit pad = ' ') {
        const long long padding =
            std::llabs(static_cast<long long>(c.width)) - static_cast<long long>(size);
        if (!LeftAligned(c))
            sink.Fill(pad, padding);
        sink.Write(body, size);
        if (LeftAligned(c))
            sink.Fill(' ', padding);
    }

    Unit TextPad(const Conversion<Unit>& c) const {
        return c.zeroPad && !LeftAligned(c) ? '0' : ' ';
    }

    struct Piece {
        const Unit* data;
        size_t size;
    };

    // A text argument in the format's width: the argument itself where it has
    // that width, else a converted copy.
    template <class Argument>
    Piece InFormatWidth(const Argument* text, size_t size) {
        if constexpr (std::is_same_v<Argument, Unit>) {
            return {text, size};
        } else {
            converted = Converted(text, size);
            return {converted.data(), converted.size()};
        }
    }

    void PrintChar(const Conversion<Unit>& c) {
        const int code = va_arg(args.list, int);
        Piece piece;
        const KTWCHAR unit = static_cast<KTWCHAR>(code);
        const char byte = static_cast<char>(code);
        if (c.TakesWide(kWideFormat))
            piece = InFormatWidth(&unit, 1);
        else
            piece = InFormatWidth(&byte, 1);
        Field(c, piece.data, piece.size, TextPad(c));
    }

    void PrintText(const Conversion<Unit>& c) {
        static const char kNull[] = "(null)";
        Piece piece;
        if (c.TakesWide(kWideFormat)) {
            const KTWCHAR* wide = va_arg(args.list, const KTWCHAR*);
            piece = wide != nullptr ? InFormatWidth(wide, std::char_traits<KTWCHAR>::length(wide))
                                    : InFormatWidth(kNull, sizeof kNull - 1);
        } else {
            const char* narrow = va_arg(args.list, const char*);
            piece = narrow != nullptr
                        ? InFormatWidth(narrow, std::char_traits<char>::length(narrow))
                        : InFormatWidth(kNull, sizeof kNull - 1);
        }
        const size_t size = c.precisionGiven
                                ? Clip(piece.data, piece.size, static_cast<size_t>(c.precision))
                                : piece.size;
        Field(c, piece.data, size, TextPad(c));
    }

    void PrintInteger(const Conversion<Unit>& c) {
        const int raw = va_arg(args.list, int);
        const bool isSigned = c.letter == 'd' || c.letter == 'i';
        const bool isShort = c.size == SizePrefix::Narrow;
        bool negative = false;
        unsigned magnitude;
        if (isSigned) {
            const int value = isShort ? static_cast<short>(raw) : raw;
            negative = value < 0;
            magnitude = negative ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
        } else {
            magnitude = isShort ? static_cast<unsigned short>(raw) : static_cast<unsigned>(raw);
        }
        const unsigned base = c.letter == 'o' ? 8 : (c.letter == 'x' || c.letter == 'X') ? 16 : 10;
        const char* digitSet = c.letter == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";

        char digits[16];
        int count = 0;
        for (unsigned rest = magnitude; rest != 0; rest /= base)
            digits[count++] = digitSet[rest % base];
        const int minimum = c.precisionGiven ? c.precision : 1;
        if (c.alternateFlags != 0 && base == 8 && minimum <= count)
            digits[count++] = '0';  // octal shows its leading zero

        Text<Unit> prefix;
        if (negative)
            prefix += '-';
        else if (isSigned && c.plusSign)
            prefix += '+';
        else if (isSigned && c.blankSign)
            prefix += ' ';
        if (c.alternateFlags != 0 && base == 16 && magnitude != 0) {
            prefix += '0';
            prefix += static_cast<Unit>(c.letter);
        }

        const long long zeros = std::max(minimum - count, 0);
        long long body = static_cast<long long>(prefix.size()) + zeros + count;
        long long padding = std::llabs(static_cast<long long>(c.width)) - body;
        const bool padWithZeros = c.zeroPad && !LeftAligned(c) && !c.precisionGiven;
        if (!LeftAligned(c) && !padWithZeros)
            sink.Fill(' ', padding);
        sink.Write(prefix.data(), prefix.size());
        if (padWithZeros)
            sink.Fill('0', padding);
        sink.Fill('0', zeros);
        for (int i = count - 1; i >= 0; --i)
            sink.Put(static_cast<Unit>(digits[i]));
        if (LeftAligned(c))
            sink.Fill(' ', padding);
    }

    void PrintPointer(const Conversion<Unit>& c) {
        const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(va_arg(args.list, void*));
        Unit digits[16];
        for (int i = 15; i >= 0; --i)
            digits[15 - i] = static_cast<Unit>("0123456789ABCDEF"[(value >> (4 * i)) & 0xF]);
        Field(c, digits, 16);
    }

    void PrintReal(const Conversion<Unit>& c) {
        const double value = va_arg(args.list, double);
        char conversionText[16];
        char* s = conversionText;
        *s++ = '%';
        if (LeftAligned(c))
            *s++ = '-';
        if (c.plusSign)
            *s++ = '+';
        if (c.blankSign)
            *s++ = ' ';
        if (c.alternateFlags != 0)
            *s++ = '#';
        if (c.zeroPad)
            *s++ = '0';
        *s++ = '*';
        *s++ = '.';
        *s++ = '*';
        *s++ = static_cast<char>(c.letter);
        *s = 0;
        const int width = static_cast<int>(std::llabs(static_cast<long long>(c.width)));
        const int precision = c.precisionGiven ? c.precision : 6;
        char local[512];
        int size = std::snprintf(local, sizeof local, conversionText, width, precision, value);
        if (size < 0)
            return;
        if (static_cast<size_t>(size) < sizeof local) {
            sink.Write(local, static_cast<size_t>(size));
            return;
        }
        std::string large(static_cast<size_t>(size) + 1, 0);
        std::snprintf(&large[0], large.size(), conversionText, width, precision, value);
        sink.Write(large.data(), static_cast<size_t>(size));
    }

    Sink<Unit> sink;
    Arguments args;
    Text<Unit> converted;
};

}  // namespace

template <class Unit>
size_t Print(Unit* out, size_t capacity, const Unit* format, va_list args) {
    return Printer<Unit>(out, capacity, args).Run(format);
}

template size_t Print(char*, size_t, const char*, va_list);
template size_t Print(KTWCHAR*, size_t, const KTWCHAR*, va_list);

}  // namespace kt::format
