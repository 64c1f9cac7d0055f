// Counts the heap allocations of the process.
#ifndef TOLVANE_BENCHMARK_ALLOCATIONS_H
#define TOLVANE_BENCHMARK_ALLOCATIONS_H

#include <cstddef>

/** Allocations made since the program began, by malloc and everything built on it. */
std::size_t allocationCount();

/** Bytes that the program holds on the heap now. */
std::size_t heapBytes();

#endif
