// Allocation failure, injected into plain `new`: natively the library shares
// the test's operator new, so the n-th allocation from a moment on can be made
// to fail, wherever it lies. Where the file layer runs out of memory the
// caller gets a null file, and nothing is left behind.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "kticore/files/FileLocks.h"
#include "tests/files/HeldAgainstWriters.h"
#include "tests/support/Counted.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// Allocations to let through before one fails; negative: none fails.
long allocationsBeforeFailure = -1;

void* Allocate(std::size_t size) {
    if (allocationsBeforeFailure == 0) {
        allocationsBeforeFailure = -1;
        return nullptr;
    }
    if (allocationsBeforeFailure > 0)
        --allocationsBeforeFailure;
    return std::malloc(size != 0 ? size : 1);
}

void* AllocateOrThrow(std::size_t size) {
    if (void* block = Allocate(size))
        return block;
    throw std::bad_alloc();
}

// Whether the allocation set up to fail has come.
bool FailureCame() { return allocationsBeforeFailure < 0; }

}  // namespace

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace {

// Whether the host's lock on `name`, if it has one, is whole.
void ExpectLocked(const kt::test::WideString& name, int locks, long allocation) {
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), locks) << "allocation " << allocation;
    if (locks != 0) {
        EXPECT_TRUE(kt::test::HeldAgainstWriters(name)) << "allocation " << allocation;
    }
}

// Each allocation of an open fails in turn, until an open runs through
// without meeting the failure: every failed one gives null and leaves no file
// behind, and the host's `locks` as they were. The release of the open that
// ran through then meets a failure of its own, and keeps the locks too.
template <class File>
void EachAllocationFailsInTurn(File* (*open)(const KTWCHAR*, int), const kt::test::WideString& name,
                               const kt::test::ScratchDirectory& scratch, int locks = 0) {
    const size_t entries = scratch.Entries().size();
    for (long before = 0;; ++before) {
        allocationsBeforeFailure = before;
        File* file = nullptr;
        try {
            file = open(name.c_str(), 0);
        } catch (const std::bad_alloc&) {
            ADD_FAILURE() << "std::bad_alloc escaped at allocation " << before;
        }
        if (!FailureCame()) {
            ASSERT_NE(file, nullptr);
            allocationsBeforeFailure = 0;
            file->Release();
            allocationsBeforeFailure = -1;
            ExpectLocked(name, locks, -1);
            return;
        }
        EXPECT_EQ(file, nullptr) << "allocation " << before;
        if (file != nullptr)
            file->Release();
        EXPECT_EQ(scratch.Entries().size(), entries) << "allocation " << before;
        ExpectLocked(name, locks, before);
    }
}

TEST(NoMemory, AnOpenWithoutMemoryIsNullAndLeavesNothing) {
    kt::test::ScratchDirectory scratch;
    const kt::test::WideString target = scratch / KTW("target.txt");
    kt::test::WriteContent(target, "old");
    EachAllocationFailsInTurn(&Fio_Open, KTW("fmem::1000,20"), scratch);
    EachAllocationFailsInTurn(&Fio_OpenOut, KTW("fmem::1000,20"), scratch);
    EachAllocationFailsInTurn(&Fio_Open, target, scratch);
    EachAllocationFailsInTurn(&Fio_OpenOut, target, scratch);
    Fio_LockFile(target.c_str(), false);
    EachAllocationFailsInTurn(&Fio_Open, target, scratch, 1);
    EachAllocationFailsInTurn(&Fio_OpenOut, target, scratch, 1);
    Fio_UnlockFile(target.c_str(), false);
    EXPECT_EQ(kt::test::ContentOf(target), "old");
}

}  // namespace
