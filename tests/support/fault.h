// SPDX-License-Identifier: Apache-2.0
//
// One failure at a time: whatever a test lets fail (an allocation, a copy) asks Strikes() whether it is its turn.

#ifndef TESTS_FAULT_H
#define TESTS_FAULT_H

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

#endif  // TESTS_FAULT_H
