// SPDX-License-Identifier: Apache-2.0
//
// Tells from the sequence numbers of arriving frames which one is next, and which was there before, comes too late, or
// belongs to somebody else.

#ifndef EXAMPLES_FRAME_ORDER_H
#define EXAMPLES_FRAME_ORDER_H

#include <bitset>
#include <cstdint>
#include <optional>

#include "damage.h"

class FrameOrder {
public:
    // Sequence numbers run from 0 to NUMBERS - 1 and begin again.
    static constexpr uint32_t NUMBERS = 1U << 24;
    // A number further ahead of or behind the expected one than this is nobody's of this stream.
    static constexpr uint32_t WINDOW = 4096;

    // Where a frame belongs: its number counted without an end, or what is wrong with it.
    struct Place {
        uint64_t number = 0;
        std::optional<Damage> damage;
    };

    // Takes the number of a frame that arrived. The numbers that it skips are late when they come after it.
    Place Take(uint32_t sequence);

private:
    uint64_t next_ = 0;
    std::bitset<WINDOW> taken_;  // of the last WINDOW numbers, those that arrived
};

#endif  // EXAMPLES_FRAME_ORDER_H
