// The debug dump, where natively it can be seen: on the standard error.
#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"

namespace kt::test {
namespace {

TEST(DumpParam, NamesValuesThenEachSectionBetweenDashes) {
    auto tree = NewTree();
    Set(tree.get(), "top", CKTVariant(1));
    Set(tree.get(), "a\\inner", CKTVariant(2));
    Ref<IParam> b(tree->CreateSection("b"));
    ::testing::internal::CaptureStderr();
    Dump_Param(tree.get());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), " top \n--- a ---\n inner \n--- b ---\n");
}

}  // namespace
}  // namespace kt::test
