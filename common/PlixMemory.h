#pragma once

#include <cstddef>

// The size from which a block of memory is mapped on its own and given back
// to the system as soon as it is freed.
constexpr std::size_t plixLargeBlockBytes = std::size_t{128} * 1024;

// Makes every block of plixLargeBlockBytes or more a mapping of its own, for
// the whole run. The C library would otherwise raise that limit after the
// first large block is freed and serve later ones from the heap, where a
// single call with a large argument leaves the service larger for good.
void plixGiveLargeBlocksBack();

// Gives the pages of freed memory back to the system, once a large piece of
// work (loading the configuration) has freed what it no longer needs.
void plixReleaseFreedMemory();
