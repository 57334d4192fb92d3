// Drives both string classes through arbitrary sequences of edits, searches,
// path operations and formats, in a single-byte or a double-byte code page
// with arbitrary bytes as text (cut-off double-byte characters included), also
// with text, or a format, taken from the string's own buffer.
// After every step it checks that the text is terminated where its size says,
// that whole characters add up to that size, and that no copy taken earlier
// has changed. Each format is checked against its estimate. The sanitizers
// watch for the rest.
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "tests/support/FormatEstimate.h"

namespace {

using kt::fuzz::FuzzInput;

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "string_fuzzer: %s\n", what);
        std::abort();
    }
}

template <class String, class Unit>
class StringRun {
public:
    explicit StringRun(FuzzInput& input) : input(input) {}

    void Run() {
        while (!input.Empty()) {
            Step();
            Check();
        }
    }

private:
    using Text = std::basic_string<Unit>;

    Text SomeText(unsigned maxLength = 12) {
        static const char kFavourites[] = "\\/:. a";
        Text text;
        for (unsigned n = input.Below(maxLength + 1); n > 0; --n) {
            const std::uint8_t choice = input.Byte();
            Unit unit = choice < 96 ? static_cast<Unit>(kFavourites[choice % 6])
                                    : static_cast<Unit>(choice);
            if (sizeof(Unit) > 1 && choice > 240)
                unit = static_cast<Unit>(0x3000 + input.Byte());
            if (unit != 0)
                text += unit;
        }
        return text;
    }

    int Position() { return static_cast<int>(input.Below(40)) - 8; }
    KTWCHAR Character() {
        return static_cast<KTWCHAR>(input.Byte() << (input.Byte() < 64 ? 8 : 0) | input.Byte());
    }

    void Step() {
        switch (input.Below(25)) {
            case 0:
                s = SomeText(40).c_str();
                break;
            case 1:
                s.Insert(Position(), Character());
                break;
            case 2:
                s.Insert(Position(), SomeText().c_str());
                break;
            case 3:
                s.Delete(Position(), Position());
                break;
            case 4:
                s.Replace(Position(), Position(), SomeText().c_str());
                break;
            case 5: {
                String part;
                s.Extract(Position(), Position(), part);
                break;
            }
            case 6:
                s.Extract(Position(), Position());
                break;
            case 7:
                s.FindReplace(SomeText(3).c_str(), SomeText().c_str());
                break;
            case 8:
                s.FindReplace(Character(), Character());
                break;
            case 9:
                s.TrimLeft();
                s.TrimRight();
                break;
            case 10:
                (s.*(input.Byte() % 2 ? &String::Upper : &String::Lower))();
                break;
            case 11:
                s.ChangeFileExt(SomeText(4).c_str());
                break;
            case 12:
                (s.*(input.Byte() % 2 ? &String::AddDirDelim : &String::AddFileExtDelim))();
                break;
            case 13:
                s.ReducePathString(static_cast<int>(input.Below(30)));
                break;
            case 14:
                Search();
                break;
            case 15:
                Paths();
                break;
            case 16: {
                Unit out[16];
                s.CopyFit(out, input.Below(16));
                break;
            }
            case 17:
                Lock();
                break;
            case 18:
                s += String(SomeText().c_str());
                break;
            case 19:
                s = s + Character();
                break;
            case 20:
                Format();
                break;
            case 21:
            case 22:
                snapshots.emplace_back(s, static_cast<const Unit*>(s));
                break;
            case 23:
                EditWithOwnText();
                break;
            default:
                s.Compare(SomeText().c_str());
                s.CompareIN(SomeText().c_str(), Position());
                break;
        }
    }

    // Edits that take their text from the string's own buffer, which the
    // growth of that buffer may let go. Most of them can double the text, so
    // it is cut short first: a run of them would otherwise grow without bound.
    void EditWithOwnText() {
        constexpr int kLongest = 200;
        s.Delete(kLongest, static_cast<int>(s.GetLength()));
        const Unit* own = s.GetData(input.Below(s.GetLength() + 1));
        switch (input.Below(7)) {
            case 0:
                s.FindReplace(own, SomeText().c_str());
                break;
            case 1:
                s.FindReplace(SomeText(3).c_str(), own);
                break;
            case 2:
                s.Insert(Position(), own);
                break;
            case 3:
                s.Replace(Position(), Position(), own);
                break;
            case 4:
                s.ChangeFileExt(own);
                break;
            case 5:
                FormatOwnText();
                break;
            default:
                s = own;
                break;
        }
    }

    // A format of text conversions only, so that each finds an argument. It
    // and some of the arguments lie in the string's own buffer, the format
    // not always; the text must be what copies of them print.
    void FormatOwnText() {
        static const char* kPieces[] = {"%s", "%-6s", "%.2s", "%5s", "%%", "ab"};
        constexpr unsigned kMostPieces = 5;  // no more conversions than arguments below
        Text format;
        for (unsigned n = input.Below(kMostPieces + 1); n > 0; --n) {
            const std::string piece = kPieces[input.Below(6)];
            format.append(piece.begin(), piece.end());
        }
        s = format.c_str();
        s.GetBuffer(static_cast<int>(input.Below(100))), s.ReleaseBuffer();  // room to spare
        const Unit* own = s.GetData(input.Below(s.GetLength() + 1));
        const Text ownCopy = own, other = SomeText();
        String expected;
        expected.Format(format.c_str(), other.c_str(), ownCopy.c_str(), other.c_str(),
                        ownCopy.c_str(), other.c_str());
        s.Format(input.Below(2) ? static_cast<const Unit*>(s) : format.c_str(), other.c_str(), own,
                 other.c_str(), own, other.c_str());
        Require(Text(static_cast<const Unit*>(s)) == static_cast<const Unit*>(expected),
                "a format of the string's own text printed otherwise");
    }

    void Search() {
        const Text what = SomeText(3);
        const int length = static_cast<int>(s.GetLength());
        for (int found :
             {s.Find(what.c_str(), Position()), s.FindOnOf(what.c_str(), Position()),
              s.Find(Character(), Position()), s.FindRev(Character()), s.FindRevOnOf(what.c_str())})
            Require(found >= -1 && found <= length,
                    "a search answered a position outside the text");
    }

    void Paths() {
        std::vector<Unit> room(s.GetSize() + 1);  // no part is longer than the whole
        Unit* out = room.data();
        Require(s.GetFileName(out) <= static_cast<int>(s.GetSize()), "name longer than the text");
        s.GetFileExt(out);
        s.GetFilePath(out);
        const String name = s.FileName(), path = s.FilePath(), ext = s.FileExt();
        Require(name.GetSize() + path.GetSize() <= s.GetSize(), "parts longer than the path");
    }

    void Lock() {
        const int n = static_cast<int>(input.Below(20));
        Unit* buffer = s.GetBuffer(n);
        const String copy = s;  // taken while locked: a copy of its own
        if (n > 0)
            buffer[input.Below(static_cast<unsigned>(n))] =
                static_cast<Unit>('a' + input.Below(26));
        buffer[n] = 0;
        s.ReleaseBuffer();
        snapshots.emplace_back(copy, static_cast<const Unit*>(copy));
    }

    // One conversion with its arguments, as Format's table allows them.
    void Format() {
        static const char* kFlags[] = {"", "-", "+", "0", " ", "#", "-#0"};
        std::string conversion = SomeAscii() + "%" + kFlags[input.Below(7)];
        const bool starWidth = input.Below(4) == 0, starPrecision = input.Below(4) == 0;
        conversion += starWidth ? "*" : std::to_string(input.Below(60));
        if (starPrecision)
            conversion += ".*";
        else if (input.Below(2))
            conversion += "." + std::to_string(input.Below(40));
        const int width = static_cast<int>(input.Below(80)) - 20,
                  precision = static_cast<int>(input.Below(50)) - 5;
        switch (input.Below(5)) {
            case 0:
                return Stars(conversion + "hd", starWidth, starPrecision, width, precision,
                             static_cast<int>(input.Below(65536) << 16));
            case 1:
                return Stars(conversion + "g", starWidth, starPrecision, width, precision,
                             static_cast<double>(input.Below(65536)) * 1e10);
            case 2:
                return Stars(conversion + "hs", starWidth, starPrecision, width, precision,
                             "narrow text");
            case 3:
                return Stars(conversion + "lc", starWidth, starPrecision, width, precision,
                             static_cast<int>(Character()));
            default:
                return Stars(conversion + "x" + SomeAscii(), starWidth, starPrecision, width,
                             precision, static_cast<int>(input.Byte()));
        }
    }

    std::string SomeAscii() {
        std::string text;
        for (unsigned n = input.Below(5); n > 0; --n) {
            const char c = static_cast<char>(' ' + input.Below(95));
            text += c != '%' ? c : '=';  // conversions come only with their arguments
        }
        return text;
    }

    template <class Value>
    void Stars(const std::string& conversion, bool starWidth, bool starPrecision, int width,
               int precision, Value value) {
        const Text format(conversion.begin(), conversion.end());
        WithStarArguments([&](auto... args) { Formatted(format, args...); }, starWidth,
                          starPrecision, width, precision, value);
    }

    template <class... Args>
    void Formatted(const Text& format, Args... args) {
        s.Format(format.c_str(), args...);
        FormatEstimate<String, Unit> estimate;
        Require(s.GetSize() <= static_cast<unsigned>(estimate(format.c_str(), args...)),
                "estimate too short");
    }

    void Check() {
        const Unit* text = s;
        const unsigned size = s.GetSize();
        Require(std::char_traits<Unit>::length(text) == size, "size is not the terminated length");
        Require(s.GetSize(s.GetLength()) == size, "characters do not add up to the size");
        Require(s.GetAllocSize() >= 0, "negative capacity");
        for (const auto& snapshot : snapshots)
            Require(Text(static_cast<const Unit*>(snapshot.first)) == snapshot.second,
                    "a copy changed");
        if (snapshots.size() > 8)
            snapshots.erase(snapshots.begin());
    }

    FuzzInput& input;
    String s;
    std::vector<std::pair<String, Text>> snapshots;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    static const int kCodePages[] = {_MB_CP_ANSI, 932, 936, 949, 950};
    FuzzInput input(data, size);
    _setmbcp(kCodePages[input.Below(5)]);
    if (input.Byte() % 2)
        StringRun<CXString, char>(input).Run();
    else
        StringRun<CXStringW, KTWCHAR>(input).Run();
    _setmbcp(_MB_CP_ANSI);
    return 0;
}
