// SPDX-License-Identifier: Apache-2.0
//
// Fault injection, one failure at a time. GoldenTest::EachFault makes each failure point fail once. Failure points are
// the functions that a test replaces and, in a program that links fault.cpp, the allocations of C++ and cJSON.

#ifndef TESTS_FAULT_H
#define TESTS_FAULT_H

#include <cstdint>
#include <utility>

// A failure point fails if ShouldFail() returns true. Each thread counts its own calls.
class Fault {
public:
    // Makes call number `ordinal` of ShouldFail(), counted from 0, return true.
    static void Arm(int ordinal)
    {
        countdown_ = ordinal;
    }

    // Stops counting, and returns true if that call was made.
    static bool Disarm()
    {
        return std::exchange(countdown_, -1) < 0;
    }

    static bool ShouldFail()
    {
        return countdown_ >= 0 && countdown_-- == 0;
    }

    // Suspends faults and counting during its lifetime.
    class Pause {
    public:
        ~Pause()
        {
            countdown_ = paused_;
        }

    private:
        const int paused_ = std::exchange(countdown_, -1);
    };

private:
    inline static thread_local int countdown_ = -1;
};

// Returns the number of live allocations of C++ and cJSON in the program and its libraries.
int64_t LiveBlocks();

#endif  // TESTS_FAULT_H
