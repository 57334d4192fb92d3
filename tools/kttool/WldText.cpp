#include "tools/kttool/WldText.h"

#include "platform/TextConversion.h"
#include "translation/WldEscapes.h"
#include "translation/WldReader.h"

namespace kttool {
namespace {

// Two quotes and a CR LF beside the string, all within one read line.
constexpr size_t kLineOverhead = 4;

std::string Escaped(const WideText& text, unsigned codePage) {
    WideText escaped;
    for (const KTWCHAR unit : text) {
        switch (unit) {
            case '\n':
                escaped += KTW("\\n");
                break;
            case '\r':
                escaped += KTW("\\r");
                break;
            case '\t':
                escaped += KTW("\\t");
                break;
            default:
                escaped += unit;
        }
    }
    return Narrow(escaped, codePage);
}

}  // namespace

WideText Widen(const std::string& narrow, unsigned codePage) {
    const int size = static_cast<int>(narrow.size());
    const int units = kt::sys::MultiByteToWide(codePage, narrow.data(), size, nullptr, 0);
    WideText wide(static_cast<size_t>(units), KTWCHAR(0));
    if (units > 0)
        kt::sys::MultiByteToWide(codePage, narrow.data(), size, wide.data(), units);
    return wide;
}

std::string Narrow(const WideText& text, unsigned codePage) {
    const int size = static_cast<int>(text.size());
    const int bytes = kt::sys::WideToMultiByte(codePage, text.data(), size, nullptr, 0);
    std::string narrow(static_cast<size_t>(bytes), '\0');
    if (bytes > 0)
        kt::sys::WideToMultiByte(codePage, text.data(), size, narrow.data(), bytes);
    return narrow;
}

bool EncodeWldString(const WideText& text, unsigned codePage, std::string& out) {
    if (text.find(KTWCHAR(0)) != WideText::npos)
        return false;
    out = Escaped(text, codePage);
    if (out.size() + kLineOverhead > static_cast<size_t>(kt::kWldLineCapacity))
        return false;
    std::string unescaped;
    kt::UndoWldEscapes(out.data(), out.size(), unescaped);
    return Widen(unescaped, codePage) == text;
}

std::string Printable(const WideText& text) { return Escaped(text, kt::sys::kUtf8CodePage); }

}  // namespace kttool
