// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_JSON_FAULT_H
#define TESTS_JSON_FAULT_H

#include <cJSON.h>

#include <cstdlib>

#include "support/fault.h"

// While it exists, each allocation of cJSON can fail, and those that are not freed yet are counted.
class JsonFault {
public:
    JsonFault()
    {
        cJSON_Hooks hooks = {Allocate, Free};
        cJSON_InitHooks(&hooks);
    }

    ~JsonFault()
    {
        cJSON_InitHooks(nullptr);
    }

    static int LiveBlocks()
    {
        return liveBlocks_;
    }

private:
    static void *Allocate(size_t size)
    {
        if (Fault::Strikes()) {
            return nullptr;
        }
        ++liveBlocks_;
        return std::malloc(size);
    }

    static void Free(void *block)
    {
        liveBlocks_ -= block == nullptr ? 0 : 1;
        std::free(block);
    }

    inline static int liveBlocks_ = 0;
};

#endif  // TESTS_JSON_FAULT_H
