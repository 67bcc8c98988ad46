// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_JSON_FAULT_H
#define TESTS_JSON_FAULT_H

#include <cJSON.h>

#include <cstdlib>

#include "support/fault.h"

// While it lives, each allocation of cJSON can fail.
class JsonFault {
public:
    JsonFault()
    {
        cJSON_Hooks hooks = {[](size_t size) { return Fault::Strikes() ? nullptr : std::malloc(size); }, std::free};
        cJSON_InitHooks(&hooks);
    }

    ~JsonFault()
    {
        cJSON_InitHooks(nullptr);
    }
};

#endif  // TESTS_JSON_FAULT_H
