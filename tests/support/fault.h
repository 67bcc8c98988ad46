// SPDX-License-Identifier: Apache-2.0
//
// Fault injection, one failure at a time. In a program that links fault.cpp each allocation can fail: that of an array
// by Fault, any other by AllocationFault. The log and the tests themselves allocate no arrays.

#ifndef TESTS_FAULT_H
#define TESTS_FAULT_H

#include <cstdint>
#include <new>

// Whatever a test lets fail asks Strikes() whether it is its turn.
class Fault {
public:
    // Lets call number `ordinal` of Strikes(), counted from 0, return true.
    static void Arm(int ordinal)
    {
        countdown_ = ordinal;
    }

    // Returns true if that call was made.
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

// While it exists, allocation number `ordinal` of this thread, counted from 0 without arrays, fails.
class AllocationFault {
public:
    explicit AllocationFault(uint64_t ordinal);
    ~AllocationFault();
};

// Repeats `operation`, letting the next allocation fail, until none does. Calls `check` after each std::bad_alloc.
// Returns the number of allocations that failed.
template <typename Operation, typename Check>
uint64_t FailEachAllocation(Operation operation, Check check)
{
    for (uint64_t ordinal = 0;; ++ordinal) {
        try {
            const AllocationFault fault(ordinal);
            operation();
            return ordinal;
        } catch (const std::bad_alloc &) {
        }
        check();
    }
}

// Returns the number of allocations of the program and its libraries that are not freed.
int64_t LiveBlocks();

#endif  // TESTS_FAULT_H
