// SPDX-License-Identifier: Apache-2.0
//
// Fault injection, one failure at a time. GoldenTest::EachFault makes each failure point fail once. Failure points are
// the functions that a test replaces and, in a program that links fault.cpp, the allocations of C++ and cJSON.

#ifndef TESTS_FAULT_H
#define TESTS_FAULT_H

#include <cstdint>

namespace Fault {

// The number of calls of ShouldFail() on this thread that return false before one returns true; negative: no fault.
inline thread_local int countdown = -1;

// A failure point fails if this returns true.
inline bool ShouldFail()
{
    return countdown >= 0 && countdown-- == 0;
}

}  // namespace Fault

// Returns the number of live allocations of C++ and cJSON in the program and its libraries.
int64_t LiveBlocks();

#endif  // TESTS_FAULT_H
