// storage: what a compound file holds, as a tree of its storages and
// streams, and with --values the stored variant in each stream.
#include "kticore/storage/Storage.h"
#include "params/Held.h"
#include "tools/kttool/AnsiText.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/FailureWords.h"
#include "tools/kttool/StoredValue.h"

namespace kttool {
namespace {

using kt::params::Held;

constexpr char kHelp[] =
    "usage: kttool storage FILE [--values]\n"
    "\n"
    "Lists the storages and streams of a compound file as a tree: a storage as\n"
    "its name and a \\, a stream as its name and its size, streams before\n"
    "storages, each in the file's order. Names show \\, \" and what is not\n"
    "printable ASCII escaped, as text values are (\\x05 for a byte 5).\n"
    "\n"
    "  --values   also the value stored in each stream that holds one: its kind\n"
    "             and value; an object by its class name and length, also when\n"
    "             the class is not registered. A stream whose bytes are no stored\n"
    "             value says so. Bytes behind a value, which readers skip, are\n"
    "             counted.\n"
    "\n"
    "The file is opened for reading only.\n";

constexpr int kIndentPerLevel = 2;

class Lister {
public:
    Lister(std::ostream& out, bool withValues) : out(out), withValues(withValues) {}

    void List(IXStorage* storage, int level) {
        const std::string indent(static_cast<size_t>(level * kIndentPerLevel), ' ');
        const Held<CTEnum<const char*>> streams(storage->EnumStreams());
        for (const char* name = nullptr; streams->Next(1, &name, nullptr);) {
            const Held<IXStream> stream(storage->OpenStream(name));
            out << indent << Escaped(name);
            if (!stream) {
                out << "  cannot be opened\n";
                continue;
            }
            out << "  " << stream->GetLength() << " bytes";
            if (withValues)
                out << "  " << ContentText(stream.get());
            out << "\n";
        }
        const Held<CTEnum<const char*>> storages(storage->EnumStorages());
        for (const char* name = nullptr; storages->Next(1, &name, nullptr);) {
            out << indent << Escaped(name) << "\\\n";
            const Held<IXStorage> child(storage->OpenStorage(name));
            List(child.get(), level + 1);
        }
    }

private:
    static std::string ContentText(IXStream* stream) {
        const StreamContent content = ReadStreamContent(stream);
        if (!content.isValue)
            return "not a stored value";
        if (content.unread == 0)
            return content.description;
        return content.description + " (and " + std::to_string(content.unread) +
               " unread bytes behind it)";
    }

    std::ostream& out;
    bool withValues;
};

}  // namespace

int RunStorage(const Arguments& args, std::ostream& out, std::ostream&) {
    const CommandLine line(args, {}, {"--help", "--values"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().size() != 1)
        throw UsageError("storage needs one FILE");
    const std::string path = line.Operands()[0];
    Held<IXStorage> storage;
    try {
        storage.Reset(open_Storage(Wide(path).c_str(), 1));
    } catch (const CXException& failure) {
        throw std::runtime_error(path + ": cannot be opened as a compound file (" +
                                 FailureWords(failure.code) + ")");
    }
    out << path << "\n";
    try {
        Lister(out, line.Has("--values")).List(storage.get(), 1);
    } catch (const CXException& failure) {
        throw std::runtime_error(path + ": cannot be read (" + FailureWords(failure.code) + ")");
    }
    return kSuccess;
}

}  // namespace kttool
