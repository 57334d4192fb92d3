// pseudo: a dictionary whose values are their texts accented, lengthened by
// about a third and bracketed, so that untranslated, cut and overflowing
// texts show at a glance. What the program reads in a text stays as it is:
// printf conversions, placeholders, the letter behind '&', the shortcut
// behind a tab, and line ends.
#include <fstream>

#include "platform/Locale.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/ModuleTexts.h"
#include "tools/kttool/Pseudo.h"
#include "tools/kttool/TextChecks.h"
#include "tools/kttool/WldEntries.h"
#include "tools/kttool/WldText.h"
#include "translation/WldReader.h"

namespace kttool {
namespace {

constexpr unsigned kDefaultLanguage = 1033;
constexpr size_t kGrowthPercent = 35;
constexpr KTWCHAR kOpen = '[';
constexpr KTWCHAR kClose = ']';
constexpr KTWCHAR kPadding = 0x00B7;  // middle dot

constexpr char kHelp[] =
    "usage: kttool pseudo FILE.wld -o OUT.wld [--lang LCID] [--key-codepage CP]\n"
    "\n"
    "Writes FILE.wld with every value pseudo-translated: accented, about 35 %\n"
    "longer, in brackets; printf conversions, placeholders, '&' accelerator\n"
    "letters, the shortcut behind \\t and line ends are kept. Comments and keys\n"
    "are copied as they stand.\n"
    "\n"
    "  -o OUT.wld          the file to write\n"
    "  --lang LCID         KT_WLD_LANG_ID of the output (default: the file's when\n"
    "                      known, else 1033); accents its code page lacks are left out\n"
    "  --key-codepage CP   the code page keys are read in (default: the input\n"
    "                      language's)\n";

// Accented forms of ASCII letters, taken where the code page has them.
KTWCHAR Accented(KTWCHAR letter) {
    static const char kPlain[] = "AaCcEeIiNnOoUuYySsZz";
    static const KTWCHAR kAccented[] = {0xC5, 0xE5, 0xC7,  0xE7,  0xC9,  0xE9, 0xCE,
                                        0xEE, 0xD1, 0xF1,  0xD6,  0xF6,  0xDC, 0xFC,
                                        0xDD, 0xFD, 0x160, 0x161, 0x17D, 0x17E};
    for (size_t i = 0; kPlain[i] != 0; ++i)
        if (letter == static_cast<KTWCHAR>(kPlain[i]))
            return kAccented[i];
    return letter;
}

bool Carries(KTWCHAR unit, unsigned codePage) {
    const WideText text(1, unit);
    return Widen(Narrow(text, codePage), codePage) == text;
}

bool CarriesAccents(unsigned codePage) { return Carries(Accented('e'), codePage); }

// Letters outside placeholders, and not behind a '&', are accented.
WideText Accent(const WideText& text, unsigned codePage) {
    WideText out = text;
    const auto spans = PlaceholderSpans(text);
    size_t span = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        while (span < spans.size() && spans[span].second <= at)
            ++span;
        const bool inPlaceholder = span < spans.size() && spans[span].first <= at;
        const bool isAccelerator = at > 0 && text[at - 1] == '&';
        const KTWCHAR accented = Accented(text[at]);
        if (!inPlaceholder && !isAccelerator && accented != text[at] && Carries(accented, codePage))
            out[at] = accented;
    }
    return out;
}

// The lines of a file, each with its line end kept, edited by number.
class EditedLines {
public:
    explicit EditedLines(const Bytes& bytes) : lines(1) {
        for (const std::uint8_t byte : bytes) {
            lines.back() += static_cast<char>(byte);
            if (byte == '\n')
                lines.emplace_back();
        }
        added.resize(lines.size());
    }

    // Line `number` (from 1) becomes `text`, with the line end it had.
    void Replace(unsigned number, const std::string& text) {
        lines[number - 1] = text + LineEnd(number);
    }
    // `text` on a line of its own behind line `number`: a last line without
    // a line end gets the one of the line before it.
    void AddBehind(unsigned number, const std::string& text) {
        std::string& line = lines[number - 1];
        if (line.empty() || line.back() != '\n')
            line += number > 1 ? LineEnd(number - 1) : "\n";
        added[number - 1] = text + LineEnd(number);
    }
    // A line with nothing before its LF: where a key is due, it ends the
    // dictionary.
    bool IsEmpty(unsigned number) const {
        return number <= lines.size() && lines[number - 1] == "\n";
    }

    void WriteTo(std::ostream& out) const {
        for (size_t i = 0; i < lines.size(); ++i)
            out << lines[i] << added[i];
    }

private:
    std::string LineEnd(unsigned number) const {
        const std::string& line = lines[number - 1];
        return line.size() >= 2 && line[line.size() - 2] == '\r' ? "\r\n" : "\n";
    }

    std::vector<std::string> lines;
    std::vector<std::string> added;
};

}  // namespace

WideText PseudoTranslate(const WideText& text, unsigned codePage) {
    const size_t tab = text.find(kShortcutSeparator);
    const WideText body = text.substr(0, tab);
    const WideText shortcut = tab == WideText::npos ? WideText() : text.substr(tab);
    const KTWCHAR padding = Carries(kPadding, codePage) ? kPadding : KTWCHAR('~');
    const size_t grow = (body.size() * kGrowthPercent + 99) / 100;
    return kOpen + Accent(body, codePage) + WideText(grow, padding) + kClose + shortcut;
}

int RunPseudo(const Arguments& args, std::ostream& out, std::ostream& err) {
    const CommandLine line(args, {"-o", "--lang", "--key-codepage"}, {"--help"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().size() != 1 || !line.Has("-o"))
        throw UsageError("pseudo needs one FILE.wld and -o OUT.wld");
    const std::string path = line.Operands().front();
    const WldEntries dictionary = ReadWldEntries(path);
    DWORD fileCodePage = 0;
    const bool fileLanguageKnown = dictionary.languageId != 0 &&
                                   kt::sys::LocaleAnsiCodePage(dictionary.languageId, fileCodePage);
    const unsigned language =
        line.Number("--lang", fileLanguageKnown ? dictionary.languageId : kDefaultLanguage);
    const unsigned codePage = CodePageOfLanguage(language);
    const unsigned keyCodePage =
        line.Number("--key-codepage", fileLanguageKnown ? fileCodePage : codePage);
    const unsigned valuesRead = fileLanguageKnown ? fileCodePage : keyCodePage;
    if (!CarriesAccents(codePage))
        err << "warning: code page " << codePage << " of language " << language
            << " has no accented Latin letters: values are only lengthened and bracketed\n";

    EditedLines edited(ReadWholeFile(path));
    bool languageWritten = false;
    for (const WldEntry& entry : dictionary.entries) {
        WideText value;
        if (entry.isLanguage) {
            value = Widen(std::to_string(language), codePage);
            languageWritten = true;
        } else {
            // A key without a value has itself as value, in the keys' code page.
            const bool ownValue = entry.keyLine == entry.valueLine;
            value =
                PseudoTranslate(Widen(entry.value, ownValue ? keyCodePage : valuesRead), codePage);
        }
        std::string encoded;
        if (!EncodeWldString(value, codePage, encoded)) {
            err << "warning: " << path << ":" << entry.keyLine
                << ": the value cannot be written, left as it was\n";
            continue;
        }
        const std::string quoted = '"' + encoded + '"';
        // The empty line that stood for the missing value would end the
        // dictionary behind the value: the value takes its place.
        if (entry.keyLine == entry.valueLine && edited.IsEmpty(entry.keyLine + 1))
            edited.Replace(entry.keyLine + 1, quoted);
        else if (entry.keyLine == entry.valueLine)
            edited.AddBehind(entry.keyLine, quoted);
        else
            edited.Replace(entry.valueLine, quoted);
    }
    const std::string outPath = line.Value("-o", "");
    std::ofstream file(outPath, std::ios::binary);
    if (!file)
        throw std::runtime_error(outPath + ": cannot be written");
    if (!languageWritten)
        file << '"' << kt::kWldLanguageKey << "\"\r\n\"" << language << "\"\r\n";
    edited.WriteTo(file);
    file.close();
    if (!file)
        throw std::runtime_error(outPath + ": cannot be written");
    return kSuccess;
}

}  // namespace kttool
