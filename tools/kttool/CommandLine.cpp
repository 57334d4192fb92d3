#include "tools/kttool/CommandLine.h"

#include "platform/Locale.h"

namespace kttool {

CommandLine::CommandLine(const std::vector<std::string>& args, const std::set<std::string>& valued,
                         const std::set<std::string>& flags) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg.size() < 2 || arg[0] != '-') {
            operands.push_back(arg);
        } else if (flags.count(arg) != 0) {
            options[arg];
        } else if (valued.count(arg) != 0) {
            if (i + 1 == args.size())
                throw UsageError(arg + " needs a value");
            options[arg] = args[++i];
        } else {
            throw UsageError("unknown option " + arg);
        }
    }
}

std::string CommandLine::Value(const std::string& option, const std::string& otherwise) const {
    const auto found = options.find(option);
    return found != options.end() ? found->second : otherwise;
}

unsigned CommandLine::Number(const std::string& option, unsigned otherwise) const {
    if (!Has(option))
        return otherwise;
    unsigned number = 0;
    if (!ParseNumber(Value(option, ""), number))
        throw UsageError(option + " takes a decimal number, not \"" + Value(option, "") + "\"");
    return number;
}

bool ParseNumber(const std::string& text, unsigned& number) {
    constexpr unsigned kLargest = 0xFFFFFFFFu;
    if (text.empty())
        return false;
    unsigned long long value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > kLargest)
            return false;
    }
    number = static_cast<unsigned>(value);
    return true;
}

unsigned CodePageOfLanguage(unsigned language) {
    DWORD codePage = 0;
    if (!kt::sys::LocaleAnsiCodePage(language, codePage))
        throw UsageError("language " + std::to_string(language) +
                         " is not a locale this system knows");
    return codePage;
}

}  // namespace kttool
