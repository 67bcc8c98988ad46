// SPDX-License-Identifier: Apache-2.0
//
// One failure at a time: whatever a test lets fail (a copy, an allocation of cJSON) asks Strikes() whether it is its
// turn. In a program that links fault.cpp each allocation of an array asks, too; those of the log and of the tests
// themselves are no arrays. AllocationFault fails the others there.

#ifndef TESTS_FAULT_H
#define TESTS_FAULT_H

#include <cstdint>

class Fault {
public:
    // The call of Strikes() with this number, from 0, will give true; the others false.
    static void Arm(int ordinal)
    {
        countdown_ = ordinal;
    }

    // True when the armed call came.
    static bool Disarm()
    {
        const bool hasStruck = countdown_ < 0;
        countdown_ = -1;
        return hasStruck;
    }

    static bool Strikes()
    {
        return countdown_ >= 0 && countdown_-- == 0;
    }

private:
    inline static thread_local int countdown_ = -1;
};

// While it lives, the allocation of this thread with number `failing` (from 0) fails; those of arrays do not count.
class AllocationFault {
public:
    explicit AllocationFault(uint64_t failing);
    ~AllocationFault();
};

// The number of allocations of the program and its libraries that are not freed yet.
int64_t LiveBlocks();

#endif  // TESTS_FAULT_H
