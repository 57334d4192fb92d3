// check: one line per finding, each with the line of the dictionary it is
// about; the status says whether anything was found.
#include "tools/kttool/Check.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "platform/Locale.h"
#include "platform/TextConversion.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/ResourceKeys.h"
#include "tools/kttool/TextChecks.h"
#include "tools/kttool/WldText.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"
#include "translation/WldReader.h"

namespace kttool {
namespace {

constexpr char kHelp[] =
    "usage: kttool check FILE.wld [MODULE...] [--key-codepage CP]\n"
    "\n"
    "Reports, one line each with its line in FILE.wld:\n"
    "  missing         a text of the modules that no entry translates (keyed or plain)\n"
    "  unused          an entry whose key matches no text of the modules\n"
    "  duplicate       a key defined again (the first definition wins)\n"
    "  hash-collision  a key with the hash of an earlier, different key: it never gets in\n"
    "  placeholders    printf conversions or positional placeholders that differ\n"
    "  accelerators    a different count of '&' marks, or a letter that another text\n"
    "                  of the same menu or dialog has after translation\n"
    "  shortcut        a menu text's part behind \\t that changed\n"
    "  untranslated    a value equal to its text or to its whole key, or empty (the\n"
    "                  text then shows as its whole key)\n"
    "  language        KT_WLD_LANG_ID missing or invalid, or a value that is no text\n"
    "                  of its code page\n"
    "  ended           an empty line that ends the dictionary before entries behind it\n"
    "Without modules only the file itself is checked.\n"
    "\n"
    "  --key-codepage CP   the code page the application runs in, which keys are\n"
    "                      read in (default: the language's)\n"
    "\n"
    "Exit status: 0 nothing found, 1 findings, 2 bad command line or input.\n";

constexpr size_t kNoEntry = static_cast<size_t>(-1);

// UTF-8 multibyte sequences in a value: a file saved as UTF-8 under a
// language of another code page.
bool LooksLikeUtf8(const std::string& text) {
    bool multibyte = false;
    for (size_t at = 0; at < text.size();) {
        const unsigned char lead = static_cast<unsigned char>(text[at]);
        const size_t length = lead < 0x80           ? 1
                              : (lead >> 5) == 0x6  ? 2
                              : (lead >> 4) == 0xE  ? 3
                              : (lead >> 3) == 0x1E ? 4
                                                    : 0;
        if (length == 0 || at + length > text.size())
            return false;
        for (size_t i = 1; i < length; ++i)
            if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80)
                return false;
        multibyte = multibyte || length > 1;
        at += length;
    }
    return multibyte;
}

std::string Quoted(const WideText& text) { return "\"" + Printable(text) + "\""; }

class Checker {
public:
    Checker(const WldEntries& dictionary, const std::vector<Module>& modules, unsigned keyCodePage)
        : dictionary(dictionary),
          modules(modules),
          keyCodePage(keyCodePage),
          rewritesFont(std::any_of(modules.begin(), modules.end(),
                                   [](const Module& module) { return module.rewritesFont; })),
          fontFace(kt::SuppDictionary().fontName) {}

    std::vector<Finding> Run() {
        if (dictionary.endingLine != 0)
            Report(dictionary.endingLine, "ended",
                   "this empty line ends the dictionary: the entries behind it are never read");
        CheckLanguage();
        AdmitEntries();
        for (const Module& module : modules)
            for (const ModuleText& text : module.texts)
                MatchText(module, text);
        for (size_t i = 0; i < entries.size(); ++i)
            CheckEntry(i);
        for (const Module& module : modules)
            CheckAcceleratorLetters(module);
        std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
            return (a.line == 0 ? ~0u : a.line) < (b.line == 0 ? ~0u : b.line);
        });
        return findings;
    }

private:
    struct Entry {
        const WldEntry* read = nullptr;
        WideText key;
        WideText value;         // as the dictionary shows it: an empty value shows the key
        bool admitted = false;  // the first of its hash: the dictionary holds it
        bool isLanguage = false;
        bool used = false;
        WideText source;  // the text it translates: the key, or the text of a keyed key
        bool ofMenu = false;
    };

    void Report(unsigned line, const char* kind, std::string message) {
        findings.push_back({line, kind, std::move(message)});
    }

    void CheckLanguage() {
        const WldEntry* language = nullptr;
        for (const WldEntry& entry : dictionary.entries)
            if (entry.isLanguage)
                language = &entry;  // the reader takes the last
        valueCodePage = keyCodePage;
        if (language == nullptr) {
            Report(0, "language",
                   std::string("no ") + kt::kWldLanguageKey +
                       " entry: values are read in the system's code page");
            return;
        }
        // The number as the library takes it (atoi), not as a strict reading would.
        const unsigned id = dictionary.languageId;
        DWORD codePage = 0;
        if (id == 0 || !kt::sys::LocaleAnsiCodePage(id, codePage)) {
            Report(language->valueLine, "language",
                   std::string(kt::kWldLanguageKey) + " \"" + language->value +
                       "\" is no locale number this system knows");
            return;
        }
        if (codePage == kt::sys::kAnsiCodePage) {
            Report(language->valueLine, "language",
                   "language " + language->value +
                       " has no ANSI code page: values are read in the system's");
            return;
        }
        valueCodePage = codePage;
        languageKnown = true;
    }

    void AdmitEntries() {
        const unsigned keysIn = keyCodePage != 0 ? keyCodePage : valueCodePage;
        for (const WldEntry& read : dictionary.entries) {
            Entry entry;
            entry.read = &read;
            entry.key = Widen(read.key, keysIn);
            entry.value = Widen(read.value, valueCodePage);
            if (entry.value.empty())
                entry.value = entry.key;
            entry.isLanguage = read.isLanguage;
            entry.source = entry.key;
            const auto first = byHash.emplace(KeyHash(entry.key), entries.size());
            entry.admitted = first.second;
            if (!entry.admitted) {
                const Entry& earlier = entries[first.first->second];
                if (earlier.key == entry.key)
                    Report(read.keyLine, "duplicate",
                           "key defined again (first at line " +
                               std::to_string(earlier.read->keyLine) +
                               "): this definition is never used");
                else
                    Report(read.keyLine, "hash-collision",
                           "key " + Quoted(entry.key) + " has the hash of line " +
                               std::to_string(earlier.read->keyLine) + "'s key " +
                               Quoted(earlier.key) + ": it never gets in");
            }
            entries.push_back(std::move(entry));
        }
    }

    size_t Admitted(const WideText& key) const {
        const auto found = byHash.find(KeyHash(key));
        return found != byHash.end() ? found->second : kNoEntry;
    }

    Entry* Use(size_t index, const ModuleText& text, const WideText& source) {
        if (index == kNoEntry)
            return nullptr;
        Entry& entry = entries[index];
        entry.used = true;
        entry.source = source;
        entry.ofMenu = entry.ofMenu || text.kind == kSuppKindMenu;
        return &entry;
    }

    // Both forms count as matching; the lookup takes the keyed one first.
    void MatchText(const Module& module, const ModuleText& text) {
        if (SkeletonKey(module.keyName, text).empty()) {
            translations.push_back(nullptr);
            return;
        }
        const WideText prefix = KeyPrefix(module.keyName, text);
        const Entry* keyed = HasKeyedLookup(prefix, text.text)
                                 ? Use(Admitted(prefix + text.text), text, text.text)
                                 : nullptr;
        const Entry* plain = Use(Admitted(text.text), text, text.text);
        const Entry* found = keyed != nullptr ? keyed : plain;
        translations.push_back(found);
        // The same text in another language of the resource has the same key.
        if (found == nullptr && reportedMissing.insert(KeyHash(prefix + text.text)).second)
            Report(0, "missing",
                   "no entry for " + WhereOf(module.fileName, text) + " " + Quoted(text.text));
    }

    void CheckEntry(size_t index) {
        const Entry& entry = entries[index];
        const unsigned line = entry.read->keyLine;
        if (!entry.admitted || entry.isLanguage)
            return;
        const std::string& raw = entry.read->value;
        if (languageKnown && (Narrow(Widen(raw, valueCodePage), valueCodePage) != raw ||
                              (valueCodePage != kt::sys::kUtf8CodePage && LooksLikeUtf8(raw))))
            Report(entry.read->valueLine, "language",
                   "value is no text of code page " + std::to_string(valueCodePage) +
                       ", the language's");
        if (!modules.empty() && !entry.used && !(rewritesFont && entry.key == fontFace))
            Report(line, "unused", "key " + Quoted(entry.key) + " matches no text of the modules");
        if (raw.empty()) {
            Report(line, "untranslated",
                   "empty value: the text shows as its key " + Quoted(entry.key));
            return;
        }
        if (entry.value == entry.source || entry.value == entry.key) {
            Report(line, "untranslated", "value equals its text " + Quoted(entry.source));
            return;
        }
        const Placeholders source = PlaceholdersOf(entry.source);
        const Placeholders value = PlaceholdersOf(entry.value);
        if (source.ordered != value.ordered || source.positional != value.positional)
            Report(line, "placeholders",
                   "printf conversions or placeholders differ between " + Quoted(entry.source) +
                       " and " + Quoted(entry.value));
        if (AcceleratorCount(entry.source) != AcceleratorCount(entry.value))
            Report(line, "accelerators",
                   std::to_string(AcceleratorCount(entry.source)) + " '&' in the text, " +
                       std::to_string(AcceleratorCount(entry.value)) + " in the value");
        if (entry.ofMenu && ShortcutPart(entry.source) != ShortcutPart(entry.value))
            Report(line, "shortcut",
                   "the shortcut behind \\t changed from " + Quoted(ShortcutPart(entry.source)) +
                       " to " + Quoted(ShortcutPart(entry.value)));
    }

    // Within one menu level or dialog, a letter that translation made
    // common to two texts; two texts that kept the letter they shared in the
    // module are the module's clash, not the translation's.
    void CheckAcceleratorLetters(const Module& module) {
        struct Holder {
            const ModuleText* text;
            const Entry* entry;
        };
        std::map<std::pair<size_t, KTWCHAR>, Holder> translatedLetters;
        for (const ModuleText& text : module.texts) {
            const Entry* entry = translations[nextTranslation++];
            if (text.scope == 0)
                continue;
            const KTWCHAR letter = AcceleratorLetter(entry != nullptr ? entry->value : text.text);
            if (letter == 0)
                continue;
            const auto first =
                translatedLetters.emplace(std::make_pair(text.scope, letter), Holder{&text, entry});
            const Holder& other = first.first->second;
            if (first.second || (entry == nullptr && other.entry == nullptr))
                continue;
            if (AcceleratorLetter(text.text) == letter &&
                AcceleratorLetter(other.text->text) == letter)
                continue;
            const Entry* reported = entry != nullptr ? entry : other.entry;
            Report(reported->read->keyLine, "accelerators",
                   "accelerator '" + Printable(WideText(1, letter)) + "' of " +
                       WhereOf(module.fileName, text) + " is also that of " + other.text->position +
                       " after translation");
        }
    }

    const WldEntries& dictionary;
    const std::vector<Module>& modules;
    unsigned keyCodePage;
    // The rewriting of a dialog with a font looks up the face name it gives
    // it: an entry for that name is in use.
    bool rewritesFont;
    WideText fontFace;
    unsigned valueCodePage = 0;
    bool languageKnown = false;
    std::vector<Entry> entries;
    std::unordered_map<DWORD, size_t> byHash;
    std::unordered_set<DWORD> reportedMissing;
    // The entry that translates each module text, in the modules' order.
    std::vector<const Entry*> translations;
    size_t nextTranslation = 0;
    std::vector<Finding> findings;
};

}  // namespace

std::vector<Finding> CheckDictionary(const WldEntries& dictionary,
                                     const std::vector<Module>& modules, unsigned keyCodePage) {
    return Checker(dictionary, modules, keyCodePage).Run();
}

int RunCheck(const Arguments& args, std::ostream& out, std::ostream&) {
    const CommandLine line(args, {"--key-codepage"}, {"--help"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().empty())
        throw UsageError("check needs FILE.wld");
    const std::string path = line.Operands().front();
    const WldEntries dictionary = ReadWldEntries(path);
    std::vector<Module> modules;
    for (size_t i = 1; i < line.Operands().size(); ++i)
        modules.push_back(ReadModule(line.Operands()[i]));
    const std::vector<Finding> findings =
        CheckDictionary(dictionary, modules, line.Number("--key-codepage", 0));
    for (const Finding& finding : findings)
        out << path << (finding.line != 0 ? ":" + std::to_string(finding.line) : std::string())
            << ": " << finding.kind << ": " << finding.message << "\n";
    return findings.empty() ? kSuccess : kFindings;
}

}  // namespace kttool
