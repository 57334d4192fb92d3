// extract: every translatable text of the modules as a dictionary skeleton,
// each pair under a comment saying where its text stands, each value the
// text itself, to be translated.
#include <fstream>
#include <unordered_map>

#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/ResourceKeys.h"
#include "tools/kttool/WldText.h"
#include "translation/WldReader.h"

namespace kttool {
namespace {

constexpr unsigned kDefaultLanguage = 1033;

constexpr char kHelp[] =
    "usage: kttool extract MODULE... -o FILE.wld [--lang LCID] [--key-codepage CP]\n"
    "\n"
    "Writes every text of the modules' string tables, menus and dialogs as a\n"
    "dictionary skeleton: each key as the running application looks it up\n"
    "(\"<module>#<kind>#<id>\" and the text), a ';' comment above it saying where\n"
    "the text stands, and the text itself as the value to translate.\n"
    "\n"
    "  -o FILE.wld          the skeleton to write\n"
    "  --lang LCID          KT_WLD_LANG_ID of the skeleton (default 1033); values\n"
    "                       are written in its ANSI code page\n"
    "  --key-codepage CP    the code page the application runs in, which keys are\n"
    "                       read in (default: the language's)\n"
    "\n"
    "A text the code pages cannot carry exactly is left out with a warning. A\n"
    "dialog or menu with a name is keyed by the name as the module holds it (in\n"
    "capitals, as resource compilers write it): where the application asks for\n"
    "it in another spelling, the key must use that spelling.\n";

class SkeletonWriter {
public:
    SkeletonWriter(std::ostream& out, std::ostream& err, unsigned keyCodePage,
                   unsigned valueCodePage)
        : out(out), err(err), keyCodePage(keyCodePage), valueCodePage(valueCodePage) {}

    void Language(unsigned language) {
        Line("; language " + std::to_string(language) + ": keys in code page " +
             std::to_string(keyCodePage) + ", values in code page " +
             std::to_string(valueCodePage));
        Pair(kt::kWldLanguageKey, std::to_string(language));
        seen.emplace(
            KeyHash(WideText(std::begin(kt::kWldLanguageKey), std::end(kt::kWldLanguageKey) - 1)),
            WideText());
    }

    void Text(const Module& module, const ModuleText& text) {
        const WideText key = SkeletonKey(module.keyName, text);
        const std::string where =
            WhereOf(module.fileName, text) + " (language " + std::to_string(text.language) + ")";
        if (key.empty()) {
            err << "warning: " << where << ": too long to be looked up, left out\n";
            return;
        }
        const auto known = seen.emplace(KeyHash(key), key);
        if (!known.second) {
            if (known.first->second != key)
                err << "warning: " << where
                    << ": its key has the hash of an earlier one, left out\n";
            return;
        }
        if (!text.resource.isNumber && !namedNoted) {
            // The library keys a named dialog or menu by the name as the
            // application spells it in its call, which the module does not
            // keep; FindResource matches the name case-blind, the keys do not.
            Line("; a dialog or menu with a name is keyed by the name as the module holds it");
            Line("; (in capitals, as resource compilers write it); where the application asks");
            Line("; for it in another spelling, the key must use that spelling");
            namedNoted = true;
        }
        std::string narrowKey;
        std::string narrowValue;
        if (!EncodeWldString(key, keyCodePage, narrowKey) ||
            !EncodeWldString(text.text, valueCodePage, narrowValue)) {
            err << "warning: " << where << ": \"" << Printable(text.text)
                << "\" cannot be written so that it reads back the same, left out\n";
            return;
        }
        Line("; " + where);
        Pair(narrowKey, narrowValue);
    }

private:
    void Line(const std::string& line) { out << line << "\r\n"; }
    void Pair(const std::string& key, const std::string& value) {
        Line('"' + key + '"');
        Line('"' + value + '"');
    }

    std::ostream& out;
    std::ostream& err;
    unsigned keyCodePage;
    unsigned valueCodePage;
    // Keys by hash: the dictionary holds one entry per hash.
    std::unordered_map<DWORD, WideText> seen;
    bool namedNoted = false;
};

}  // namespace

int RunExtract(const Arguments& args, std::ostream& out, std::ostream& err) {
    const CommandLine line(args, {"-o", "--lang", "--key-codepage"}, {"--help"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().empty() || !line.Has("-o"))
        throw UsageError("extract needs at least one MODULE and -o FILE.wld");
    const unsigned language = line.Number("--lang", kDefaultLanguage);
    const unsigned valueCodePage = CodePageOfLanguage(language);
    const unsigned keyCodePage = line.Number("--key-codepage", valueCodePage);
    std::vector<Module> modules;
    for (const std::string& path : line.Operands())
        modules.push_back(ReadModule(path));
    const std::string outPath = line.Value("-o", "");
    std::ofstream file(outPath, std::ios::binary);
    if (!file)
        throw std::runtime_error(outPath + ": cannot be written");
    SkeletonWriter writer(file, err, keyCodePage, valueCodePage);
    writer.Language(language);
    for (const Module& module : modules)
        for (const ModuleText& text : module.texts)
            writer.Text(module, text);
    file.close();
    if (!file)
        throw std::runtime_error(outPath + ": cannot be written");
    return kSuccess;
}

}  // namespace kttool
