// SPDX-License-Identifier: Apache-2.0
//
// Replaces the allocation functions of a program and its libraries. The forms that are missing call these.

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

void *OrThrow(void *block)
{
    return block != nullptr ? block : throw std::bad_alloc();
}

}  // namespace

int64_t LiveBlocks()
{
    return g_liveBlocks;
}

AllocationFault::AllocationFault(uint64_t ordinal)
{
    g_failing = g_count + ordinal;
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

void operator delete(void *block) noexcept
{
    Free(block);
}

void operator delete(void *block, size_t) noexcept
{
    Free(block);
}

void operator delete[](void *block) noexcept
{
    Free(block);
}

void operator delete[](void *block, size_t) noexcept
{
    Free(block);
}
