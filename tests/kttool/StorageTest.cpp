// storage: the tree of a compound file, the values in its streams, and
// streams whose bytes are none.
#include "kticore/storage/Storage.h"
#include "tests/kttool/ToolTestSupport.h"
#include "tests/support/Counted.h"

namespace kttool::test {
namespace {

using kt::test::Ref;

constexpr unsigned short kObjectKind = KTVT_OBJECT;

void WriteValue(IXStorage* storage, const char* name, const CKTVariant& value) {
    Ref<IXStream>(storage->CreateStream(name))->WriteVariant(&value);
}

void WriteBytes(IXStorage* storage, const char* name, const std::string& bytes) {
    Ref<IXStream>(storage->CreateStream(name))
        ->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

// The whole listing: streams before storages, each in the file's order (the
// compound file sorts names by length, then by letters), each level
// indented, names escaped as text values are.
TEST(Storage, ListsTheTreeWithTheValueInEachStream) {
    Scratch scratch;
    const std::string path = scratch / "doc.cfd";
    {
        Ref<IXStorage> root(new_Storage(CXStringW(path.c_str()), 0));
        WriteValue(root.get(), "Width", CKTVariant(640));
        WriteValue(root.get(), "Title", CKTVariant("a \"b\"\n"));
        WriteBytes(root.get(), "junk", "hello");
        WriteBytes(root.get(), "cut", std::string("\x0a\0\x64\0\0\0abc", 9));
        WriteBytes(root.get(), "\005Summary", "");
        Ref<IXStorage> sub(root->CreateStorage("Sub"));
        WriteValue(sub.get(), "Wide", CKTVariant(KTW("\u00e9t\u00e9")));
        WriteValue(sub.get(), "Frame", CKTVariant(tagRRECT{0.5, -1, 1e10, 2.25}));
        // An object of a class no program here has registered.
        WriteBytes(sub.get(), "Shape",
                   std::string(reinterpret_cast<const char*>(&kObjectKind), sizeof kObjectKind) +
                       std::string("Foreign.Shape\0\3\0\0\0xyz", 21));
        Ref<IXStorage> deeper(sub->CreateStorage("Deeper"));
        const CKTVariant longer(-70000);
        CKTVariant shorter(static_cast<unsigned char>(9));
        Ref<IXStream> over(deeper->CreateStream("Over"));
        over->WriteVariant(&longer);
        over->Seek(0, 0);
        over->WriteVariant(&shorter);
    }
    const ToolRun run = RunKtTool({"storage", path, "--values"});
    ASSERT_EQ(run.status, kSuccess) << run.err;
    EXPECT_EQ(run.out,
              path + "\n" +
                  "  cut  9 bytes  not a stored value\n"
                  "  junk  5 bytes  not a stored value\n"
                  "  Title  13 bytes  text \"a \\\"b\\\"\\x0a\"\n"
                  "  Width  6 bytes  int 640\n"
                  "  \\x05Summary  0 bytes  not a stored value\n"
                  "  Sub\\\n"
                  "    Wide  14 bytes  wide text \"\\u00e9t\\u00e9\"\n"
                  "    Frame  34 bytes  real rectangle 0.5,-1,1e+10,2.25\n"
                  "    Shape  23 bytes  object Foreign.Shape, 3 bytes, class not registered\n"
                  "    Deeper\\\n"
                  "      Over  6 bytes  byte 9 (and 3 unread bytes behind it)\n");

    const ToolRun plain = RunKtTool({"storage", path});
    EXPECT_NE(plain.out.find("\n  Width  6 bytes\n"), std::string::npos) << plain.out;
    EXPECT_EQ(plain.out.find("int"), std::string::npos) << plain.out;
}

TEST(Storage, FilesThatAreNoCompoundFilesAreAnsweredWithAMessage) {
    Scratch scratch;
    std::ofstream(scratch / "text.txt") << "not a compound file\n";
    for (const auto& [args, says] : std::initializer_list<std::pair<Arguments, const char*>>{
             {{"storage"}, "needs one FILE"},
             {{"storage", scratch / "missing.cfd"}, "compound file (no such file)"},
             {{"storage", scratch / "text.txt"},
              "text.txt: cannot be opened as a compound file"}}) {
        const ToolRun run = RunKtTool(args);
        EXPECT_EQ(run.status, kFailure) << says;
        EXPECT_NE(run.err.find(says), std::string::npos) << run.err;
    }
}

}  // namespace
}  // namespace kttool::test
