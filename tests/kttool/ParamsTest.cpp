// params: trees copied between the places the command line names, and the
// answers to places that cannot be read or made.
#include "kticore/params/ParamTools.h"
#include "tests/kttool/ToolTestSupport.h"
#include "tests/params/AllKinds.h"
#include "tools/kttool/ParamPlaces.h"
#if defined(_WIN32)
#    include "kticore/params/RegistryParam.h"
#    include "kticore/storage/Storage.h"
#endif

namespace kttool::test {
namespace {

using kt::test::Ref;

Ref<IParam> TextTree(const std::string& path) {
    Ref<IParam> tree(new_MemParam());
    Param_IniFile2Param(CXStringW(path.c_str()), tree.get());
    return tree;
}

// Every kind of value, in the text form at `path`.
Ref<IParam> EveryKindAt(const std::string& path) {
    Ref<IParam> tree(new_MemParam());
    kt::test::FillWithEveryKind(tree.get(), false);
    Param_Param2IniFile(tree.get(), CXStringW(path.c_str()));
    return tree;
}

std::string ContentOf(const std::string& path) {
    return kt::test::ContentOf(kt::test::WideString(path.begin(), path.end()));
}

// Text to profile file to text to standard output, merging into what a
// destination holds, and a source that is only read.
TEST(Params, ATreeGoesRoundTheFilePlacesAndStandardOutput) {
    Scratch scratch;
    const Ref<IParam> tree = EveryKindAt(scratch / "a.txt");
    std::ofstream(scratch / "c.txt", std::ios::binary) << "[\\]\r\nkept=i7|int=i0\r\n";

    EXPECT_EQ(RunKtTool({"params", "text:" + scratch / "a.txt", "ini:" + scratch / "b.ini"}).status,
              kSuccess);
    // A root without its marker key, as a hand-made file has it: reading
    // must not write one.
    std::string profile = ContentOf(scratch / "b.ini");
    const size_t marker = profile.find("@=e\r\n");
    ASSERT_NE(marker, std::string::npos) << profile;
    profile.erase(marker, 5);
    std::ofstream(scratch / "b.ini", std::ios::binary) << profile;
    EXPECT_EQ(RunKtTool({"params", "ini:" + scratch / "b.ini", "text:" + scratch / "c.txt"}).status,
              kSuccess);
    EXPECT_EQ(ContentOf(scratch / "b.ini"), profile) << "the source was written";
    const ToolRun printed = RunKtTool({"params", "text:" + scratch / "c.txt", "-"});
    ASSERT_EQ(printed.status, kSuccess) << printed.err;
    EXPECT_EQ(printed.out.find('\r'), std::string::npos);
    std::ofstream(scratch / "d.txt", std::ios::binary) << printed.out;
    const Ref<IParam> result = TextTree(scratch / "d.txt");
    EXPECT_EQ(Param_Cmp(tree.get(), result.get()), 1) << printed.out;
    EXPECT_EQ(static_cast<int>(kt::test::ValueAt(result.get(), "kept")), 7) << printed.out;
}

#if defined(_WIN32)
// Text to registry to a storage inside a compound file, which are made, and
// out; then a missing storage and a file of another kind as sources.
TEST(Params, ATreeGoesThroughTheRegistryAndACompoundFile) {
    Scratch scratch;
    const Ref<IParam> tree = EveryKindAt(scratch / "a.txt");
    const std::string key = "reg:HKCU\\Software\\kticore-kttool-tests\\params";
    const std::string storage = "stor:" + scratch / "tree.cfd";

    EXPECT_EQ(RunKtTool({"params", "text:" + scratch / "a.txt", key}).status, kSuccess);
    const Ref<IParam> source(new_IParamCUReg(L"Software\\kticore-kttool-tests\\params"));
    const Ref<IParam> before(new_MemParam());
    Param_CopyTo(source.get(), before.get());
    EXPECT_EQ(RunKtTool({"params", key, storage + ":Inner\\Deep"}).status, kSuccess);
    EXPECT_EQ(Param_Cmp(before.get(), source.get()), 1) << "the source key was changed";
    const ToolRun printed = RunKtTool({"params", storage + ":Inner\\Deep", "-"});
    EXPECT_EQ(printed.status, kSuccess) << printed.err;
    std::ofstream(scratch / "d.txt", std::ios::binary) << printed.out;
    EXPECT_EQ(Param_Cmp(tree.get(), TextTree(scratch / "d.txt").get()), 1) << printed.out;

    const ToolRun noStorage = RunKtTool({"params", storage + ":Inner\\None", "-"});
    EXPECT_NE(noStorage.err.find("no storage \"Inner\\None\""), std::string::npos) << noStorage.err;
    const ToolRun notCompound = RunKtTool({"params", "stor:" + scratch / "a.txt", "-"});
    EXPECT_NE(notCompound.err.find("a.txt: cannot be read"), std::string::npos) << notCompound.err;
    EXPECT_EQ(noStorage.status + notCompound.status, 2 * kFailure);
    Ref<IParam> software(new_IParamCUReg(L"Software"));
    software->DeleteSection("kticore-kttool-tests");
}

// A copy that fails never reaches Finish: a compound file it wrote to is as
// it was, and one it would have made is not there. Finish brings the tree in.
TEST(Params, ACompoundFileChangesOnlyWhenTheCopyFinishes) {
    Scratch scratch;
    const std::string existing = scratch / "existing.cfd";
    {
        const Ref<IXStorage> file(new_Storage(CXStringW(existing.c_str()), 0));
        const Ref<IXStream> stream(file->CreateStream("kept"));
    }
    const std::string content = ContentOf(existing);
    for (const std::string& name : {existing, scratch / "made.cfd"}) {
        const auto place = OpenPlace("stor:" + name + ":Inner", PlaceRole::kDestination);
        kt::test::Set(place->Tree(), "value", CKTVariant(1));
    }
    EXPECT_TRUE(ContentOf(existing) == content) << "an unfinished copy changed the file";
    EXPECT_FALSE(std::ifstream(scratch / "made.cfd")) << "an unfinished copy made the file";

    const auto place = OpenPlace("stor:" + existing + ":Inner", PlaceRole::kDestination);
    kt::test::Set(place->Tree(), "value", CKTVariant(1));
    std::ostringstream out;
    place->Finish(out);
    const ToolRun printed = RunKtTool({"params", "stor:" + existing + ":Inner", "-"});
    EXPECT_NE(printed.out.find("value=i1"), std::string::npos) << printed.out << printed.err;
}
#endif

constexpr char kOverlap[] = "overlap: a tree cannot be copied into itself";
#if defined(_WIN32)
constexpr char kNoRegistryKey[] = "kticore-none: no such key";
#else
constexpr char kNoRegistryKey[] = "registry places exist on Windows only";
#endif

TEST(Params, PlacesThatCannotBeUsedAreAnsweredWithAMessage) {
    Scratch scratch;
    const std::string missing = scratch / "missing.txt", source = scratch / "source.txt";
    std::ofstream(source) << "[\\]\nv=i1\n";
    const struct {
        Arguments args;
        const char* says;
    } answers[] = {
        {{"params", "text:" + missing}, "needs FROM and TO"},
        {{"params", missing, "-"}, "is no place"},
        {{"params", "-", "text:" + missing}, "can only be copied to"},
        {{"params", "text:", "-"}, "the file is missing"},
        {{"params", "text:" + missing, "-"}, "missing.txt: cannot be read (no such file)"},
        {{"params", "ini:" + missing, "-"}, "missing.txt: cannot be read (no such file)"},
        {{"params", "reg:HKCR\\Software", "-"}, "begins with HKCU\\ or HKLM\\"},
        {{"params", "reg:HKCU\\", "-"}, "a key below the hive is needed"},
        {{"params", "text:" + source, "text:" + scratch / ""}, "cannot be opened"},
        {{"params", "text:" + source, "text:" + scratch / "./SOURCE.txt"}, kOverlap},
        {{"params", "ini:" + source, "ini:" + source}, kOverlap},
        {{"params", "stor:" + source, "stor:" + source + ":Inner"}, kOverlap},
        {{"params", "reg:HKCU\\Software\\kt", "reg:hkcu\\SOFTWARE\\KT\\Y"}, kOverlap},
        {{"params", "reg:HKCU\\Software\\kt\\Y", "reg:HKEY_CURRENT_USER\\Software\\kt\\"},
         kOverlap},
        {{"params", "reg:HKCU\\Software\\kticore-none", "reg:HKCU\\Software\\kticore-none-b"},
         kNoRegistryKey},
    };
    for (const auto& answer : answers) {
        const ToolRun run = RunKtTool(answer.args);
        SCOPED_TRACE(answer.says);
        EXPECT_EQ(run.status, kFailure);
        EXPECT_NE(run.err.find(answer.says), std::string::npos) << run.out << run.err;
    }
    EXPECT_FALSE(std::ifstream(missing)) << "a missing source was made";
}

}  // namespace
}  // namespace kttool::test
