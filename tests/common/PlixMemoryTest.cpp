#include "PlixMemory.h"

#include <gtest/gtest.h>

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

// Under AddressSanitizer the blocks come from the sanitizer's allocator: these
// tests are for the C library's own and run in the native build.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
namespace {
// Keeps the compiler from leaving out a block that is freed unread.
void* volatile sink = nullptr;

// Frees one large block, then exits 0 when the next block of that size is a
// mapping of its own (and so goes back to the system when freed), 1 when it
// comes from the heap.
[[noreturn]] void exitWithWhereTheSecondLargeBlockLives()
{
    sink = std::malloc(4 * plixLargeBlockBytes);
    std::free(sink);
    const std::size_t mappedBefore = mallinfo2().hblks;
    sink = std::malloc(4 * plixLargeBlockBytes);
    const bool mapped = mallinfo2().hblks > mappedBefore;
    std::free(sink);
    std::_Exit(mapped ? 0 : 1);
}
} // namespace

TEST(PlixMemory, LargeBlockAfterAFreedOneIsStillAMappingOfItsOwn)
{
    EXPECT_EXIT(
        {
            plixGiveLargeBlocksBack();
            exitWithWhereTheSecondLargeBlockLives();
        },
        testing::ExitedWithCode(0), "");
}

TEST(PlixMemory, SmallBlocksStillComeFromTheHeap)
{
    plixGiveLargeBlocksBack();
    const std::size_t mappedBefore = mallinfo2().hblks;
    sink = std::malloc(plixLargeBlockBytes / 4);
    EXPECT_EQ(mallinfo2().hblks, mappedBefore);
    std::free(sink);
}
#endif
