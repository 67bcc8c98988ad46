// SPDX-License-Identifier: Apache-2.0
//
// Replaces the allocation of a program and of the library in it. All forms that are not here lead to these.

#include "support/fault.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

thread_local uint64_t g_count = 0;
thread_local uint64_t g_failing = UINT64_MAX;

void *Allocate(bool fails, size_t size)
{
    return fails || size > PTRDIFF_MAX ? nullptr : std::malloc(size);
}

void *OrThrow(void *memory)
{
    return memory != nullptr ? memory : throw std::bad_alloc();
}

}  // namespace

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
    std::free(memory);
}

void operator delete(void *memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, size_t) noexcept
{
    std::free(memory);
}
