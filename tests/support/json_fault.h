// SPDX-License-Identifier: Apache-2.0
//
// While it lives, the allocations of cJSON from number `failing` (from 0) on fail, or just that one. One at a time, on
// one thread.

#ifndef TESTS_JSON_FAULT_H
#define TESTS_JSON_FAULT_H

#include <cJSON.h>

#include <cstdlib>

enum class JsonFaultKind { SINGLE, LASTING };

class JsonFault {
public:
    explicit JsonFault(int failing, JsonFaultKind kind = JsonFaultKind::SINGLE)
    {
        Countdown() = failing;
        cJSON_Hooks hooks = {nullptr, std::free};
        hooks.malloc_fn = kind == JsonFaultKind::SINGLE
                              ? [](size_t size) { return Countdown()-- == 0 ? nullptr : std::malloc(size); }
                              : [](size_t size) { return Countdown()-- <= 0 ? nullptr : std::malloc(size); };
        cJSON_InitHooks(&hooks);
    }

    ~JsonFault()
    {
        cJSON_InitHooks(nullptr);
    }

    JsonFault(const JsonFault &) = delete;
    JsonFault &operator=(const JsonFault &) = delete;

    // True when the failing allocation was reached.
    bool Struck() const
    {
        return Countdown() < 0;
    }

private:
    static int &Countdown()
    {
        static int countdown = 0;
        return countdown;
    }
};

#endif  // TESTS_JSON_FAULT_H
