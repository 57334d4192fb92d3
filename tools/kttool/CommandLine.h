// The arguments of a subcommand: options with a value ("-o FILE",
// "--lang 1036"), bare flags, and the operands in order.
#pragma once

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace kttool {

// A command line that cannot be run: the message says why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class CommandLine {
public:
    // Throws UsageError for an option not among `valued` or `flags`, or one
    // without its value.
    CommandLine(const std::vector<std::string>& args, const std::set<std::string>& valued,
                const std::set<std::string>& flags);

    bool Has(const std::string& option) const { return options.count(option) != 0; }
    std::string Value(const std::string& option, const std::string& otherwise) const;
    // A number in decimal; UsageError for anything else.
    unsigned Number(const std::string& option, unsigned otherwise) const;
    const std::vector<std::string>& Operands() const { return operands; }

private:
    std::map<std::string, std::string> options;
    std::vector<std::string> operands;
};

// A whole decimal number, or false.
bool ParseNumber(const std::string& text, unsigned& number);

// The ANSI code page of a Windows locale number; UsageError where the
// locale is unknown.
unsigned CodePageOfLanguage(unsigned language);

}  // namespace kttool
