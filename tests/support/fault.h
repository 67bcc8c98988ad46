// SPDX-License-Identifier: Apache-2.0
//
// Fault injection, one failure at a time. GoldenTest::EachFault lets everything that can fail fail once: in a program
// that links fault.cpp these are the allocations of C++ and cJSON, and in any program the functions that a test
// replaces.

#ifndef TESTS_FAULT_H
#define TESTS_FAULT_H

#include <cstdint>
#include <utility>

// Anything that can fail asks Strikes() whether to fail now. Each thread has its own count.
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
        return std::exchange(countdown_, -1) < 0;
    }

    static bool Strikes()
    {
        return countdown_ >= 0 && countdown_-- == 0;
    }

    // While it exists, nothing fails and nothing is counted.
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

// Returns the number of allocations of C++ and cJSON, in the program and its libraries, that are not freed.
int64_t LiveBlocks();

#endif  // TESTS_FAULT_H
