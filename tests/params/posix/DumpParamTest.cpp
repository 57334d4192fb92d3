// The debug dump, where natively it can be seen: on the standard error.
#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"

namespace {

TEST(DumpParam, NamesValuesThenEachSectionBetweenDashes) {
    auto tree = kt::test::NewTree();
    kt::test::Set(tree.get(), "top", CKTVariant(1));
    kt::test::Set(tree.get(), "a\\inner", CKTVariant(2));
    kt::test::Ref<IParam> b(tree->CreateSection("b"));
    ::testing::internal::CaptureStderr();
    Dump_Param(tree.get());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), " top \n--- a ---\n inner \n--- b ---\n");
}

}  // namespace
