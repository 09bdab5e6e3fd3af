#include "PlixMemory.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

void plixGiveLargeBlocksBack()
{
#ifdef __GLIBC__
    // A fixed mapping limit also fixes the heap's trim limit at its default,
    // so the top of the heap is given back as well.
    mallopt(M_MMAP_THRESHOLD, static_cast<int>(plixLargeBlockBytes));
#endif
}

void plixReleaseFreedMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
