// SPDX-License-Identifier: Apache-2.0
//
// Makes each allocation of an array fail in turn, those of the library included, and those that no machine can give at
// any time. Arrays keep apart from what the platform's log allocates.

#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/fault.h"

void *operator new[](size_t size, const std::nothrow_t &) noexcept
{
    return Fault::Strikes() || size > PTRDIFF_MAX ? nullptr : std::malloc(size);
}

void *operator new[](size_t size)
{
    void *memory = operator new[](size, std::nothrow);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, size_t) noexcept
{
    std::free(memory);
}
