// SPDX-License-Identifier: Apache-2.0
//
// Replaces the allocation functions of a program and its libraries. The default versions of the other overloads call
// these.

#include "support/fault.h"

#include <cJSON.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> g_liveBlocks{0};

void *Allocate(size_t size)
{
    void *const block = Fault::ShouldFail() || size > PTRDIFF_MAX ? nullptr : std::malloc(size);
    g_liveBlocks += block == nullptr ? 0 : 1;
    return block;
}

void Free(void *block)
{
    g_liveBlocks -= block == nullptr ? 0 : 1;
    std::free(block);
}

[[maybe_unused]] const bool IS_CJSON_REPLACED = [] {
    cJSON_Hooks hooks = {Allocate, Free};
    cJSON_InitHooks(&hooks);
    return true;
}();

}  // namespace

int64_t LiveBlocks()
{
    return g_liveBlocks;
}

void *operator new(size_t size)
{
    void *const block = Allocate(size);
    return block != nullptr ? block : throw std::bad_alloc();
}

void *operator new[](size_t size)
{
    return operator new(size);
}

void *operator new[](size_t size, const std::nothrow_t &) noexcept
{
    return Allocate(size);
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
