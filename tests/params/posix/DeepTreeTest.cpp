// Trees deeper than a thread's stack could hold by recursion: the tools walk
// them with a flat stack. A thread with a small stack shows it with a few
// thousand levels, where a text of the tree is still short (every header
// holds its whole path).
#include <pthread.h>

#include <functional>
#include <string>

#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/Streams.h"

namespace kt::test {
namespace {

// A stack on which any of the tools, recursing, overflows long before 2000
// levels.
constexpr size_t kSmallStack = 128 * 1024;
constexpr int kLevels = 2000;

void RunOnSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
    pthread_t thread;
    auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    auto* argument = const_cast<std::function<void()>*>(&work);
    ASSERT_EQ(pthread_create(&thread, &attributes, run, argument), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(DeepTree, EveryToolWalksItWithAFlatStack) {
    std::string line = "[";
    for (int level = 0; level < kLevels; ++level)
        line += "\\s";
    CXString text((line + "]|v=i1").c_str());
    ScratchDirectory directory;
    const WideString file = directory / KTW("deep.ini");

    RunOnSmallStack([&] {
        auto tree = NewTree();
        ASSERT_EQ(Param_String2Param(text, tree.get()), 1);
        auto copy = NewTree();
        Param_CopyTo(tree.get(), copy.get());
        EXPECT_EQ(Param_Cmp(tree.get(), copy.get()), 1);
        Param_Param2IniFile(copy.get(), file.c_str());
        auto back = NewTree();
        ASSERT_EQ(Param_IniFile2Param(file.c_str(), back.get()), 1);
        EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 1);
        const std::string twoHundredLevels = line.substr(2, 2 * 200 - 1);  // "s\\s ... \\s"
        Set(back.get(), (twoHundredLevels + "\\w").c_str(), CKTVariant(2));
        EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 0);  // a difference deep down counts

        // Every level of the stream form: the name going down, then the end
        // of its sections and of its values coming up.
        Ref<IXStream> stream(new_StreamOnMemory());
        ASSERT_EQ(SaveParamToXStream(stream.get(), tree.get()), 1);
        std::string form;
        for (int level = 0; level < kLevels; ++level)
            form += std::string("s\0", 2);
        Ref<IXStream> one(new_StreamOnMemory());
        one->WriteString("");
        one->WriteString("v");
        const CKTVariant value(1);
        one->WriteVariant(&value);
        one->WriteString("");
        Bytes expected(form.begin(), form.end());
        const Bytes deepest = AllBytes(one.get());
        expected.insert(expected.end(), deepest.begin(), deepest.end());
        expected.resize(expected.size() + 2 * kLevels, 0);
        EXPECT_EQ(AllBytes(stream.get()), expected);
        stream->Seek(0, 0);
        auto loaded = NewTree();
        ASSERT_EQ(LoadParamFromXStream(stream.get(), loaded.get()), 1);
        EXPECT_EQ(Param_Cmp(loaded.get(), tree.get()), 1);
        EXPECT_EQ(Param_Cmp(tree.get(), loaded.get()), 1);

        ::testing::internal::CaptureStderr();
        Dump_Param(tree.get());
        const std::string dump = ::testing::internal::GetCapturedStderr();
        const size_t lines = kLevels * std::string("--- s ---\n").size();
        EXPECT_EQ(dump.size(), lines + std::string(" v \n").size());
    });
}

}  // namespace
}  // namespace kt::test
