// SPDX-License-Identifier: Apache-2.0
//
// Replaces the allocation of a program and of the library in it. All forms that are not here lead to these.

#include "support/fault.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> g_liveBlocks{0};
thread_local uint64_t g_count = 0;
thread_local uint64_t g_failing = UINT64_MAX;

void *Allocate(bool fails, size_t size)
{
    void *const block = fails || size > PTRDIFF_MAX ? nullptr : std::malloc(size);
    g_liveBlocks += block == nullptr ? 0 : 1;
    return block;
}

void Free(void *block)
{
    g_liveBlocks -= block == nullptr ? 0 : 1;
    std::free(block);
}

void *OrThrow(void *memory)
{
    return memory != nullptr ? memory : throw std::bad_alloc();
}

}  // namespace

int64_t LiveBlocks()
{
    return g_liveBlocks;
}

AllocationFault::AllocationFault(uint64_t failing)
{
    g_failing = g_count + failing;
}

AllocationFault::~AllocationFault()
{
    g_failing = UINT64_MAX;
}

void *operator new(size_t size)
{
    return OrThrow(Allocate(g_count++ == g_failing, size));
}

void *operator new[](size_t size, const std::nothrow_t &) noexcept
{
    return Allocate(Fault::Strikes(), size);
}

void *operator new[](size_t size)
{
    return OrThrow(Allocate(Fault::Strikes(), size));
}

void operator delete(void *memory) noexcept
{
    Free(memory);
}

void operator delete(void *memory, size_t) noexcept
{
    Free(memory);
}

void operator delete[](void *memory) noexcept
{
    Free(memory);
}

void operator delete[](void *memory, size_t) noexcept
{
    Free(memory);
}
