// SPDX-License-Identifier: Apache-2.0
//
// Counts the allocations of this thread and makes one fail on request. A test program that links allocation_fault.cpp
// replaces the global operator new for itself and for the library.

#ifndef TESTS_ALLOCATION_FAULT_H
#define TESTS_ALLOCATION_FAULT_H

#include <cstdint>

// While it lives, the allocation of this thread with number `failing` (from 0) fails.
class AllocationFault {
public:
    explicit AllocationFault(uint64_t failing);
    ~AllocationFault();
    AllocationFault(const AllocationFault &) = delete;
    AllocationFault &operator=(const AllocationFault &) = delete;
};

// Allocations that this thread has asked for so far.
uint64_t AllocationCount();

#endif  // TESTS_ALLOCATION_FAULT_H
