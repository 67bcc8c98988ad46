// SPDX-License-Identifier: Apache-2.0
//
// While it lives, the allocation of cJSON with number `failing` (from 0) fails. One at a time, on one thread.

#ifndef TESTS_JSON_FAULT_H
#define TESTS_JSON_FAULT_H

#include <cJSON.h>

#include <cstdlib>

class JsonFault {
public:
    explicit JsonFault(int failing)
    {
        Countdown() = failing;
        cJSON_Hooks hooks = {[](size_t size) { return Countdown()-- == 0 ? nullptr : std::malloc(size); }, std::free};
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
