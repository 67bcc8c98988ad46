// SPDX-License-Identifier: Apache-2.0

#include "allocation_fault.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr uint64_t NEVER = std::numeric_limits<uint64_t>::max();
constexpr size_t MORE_THAN_ANY_MACHINE_HAS = std::numeric_limits<size_t>::max() / 4;

thread_local uint64_t g_count = 0;
thread_local uint64_t g_failing = NEVER;

void *Allocate(size_t size)
{
    const bool fails = g_count++ == g_failing || size > MORE_THAN_ANY_MACHINE_HAS;
    return fails ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void *AllocateOrThrow(size_t size)
{
    void *memory = Allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

AllocationFault::AllocationFault(uint64_t failing)
{
    g_failing = g_count + failing;
}

AllocationFault::~AllocationFault()
{
    g_failing = NEVER;
}

uint64_t AllocationCount()
{
    return g_count;
}

void *operator new(size_t size)
{
    return AllocateOrThrow(size);
}

void *operator new[](size_t size)
{
    return AllocateOrThrow(size);
}

void *operator new(size_t size, const std::nothrow_t &) noexcept
{
    return Allocate(size);
}

void *operator new[](size_t size, const std::nothrow_t &) noexcept
{
    return Allocate(size);
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, const std::nothrow_t &) noexcept
{
    std::free(memory);
}
