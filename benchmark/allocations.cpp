// Counts the heap allocations of the process: these definitions come before the C library's.
#include "allocations.h"

#include <malloc.h>

namespace {
std::size_t allocations = 0;
}

extern "C" {

void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void *__libc_realloc(void *, std::size_t);

void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}

void *realloc(void *block, std::size_t size)
{
    ++allocations;
    return __libc_realloc(block, size);
}

}  // extern "C"

std::size_t allocationCount()
{
    return allocations;
}

std::size_t heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}
