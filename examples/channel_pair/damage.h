// SPDX-License-Identifier: Apache-2.0
//
// What can be wrong with a frame that arrives, as the receiver names it and as the faults on the way are planned.

#ifndef EXAMPLES_DAMAGE_H
#define EXAMPLES_DAMAGE_H

#include <array>
#include <cstdint>
#include <string>

enum class Damage : uint32_t {
    FLIPPED,   // the CRC does not fit the bytes
    CUT,       // not as long as it says
    REPEATED,  // arrived before
    LATE,      // overtaken by a later one; a stream cannot take it back
    EMPTY,     // a message without a byte
    TOO_LONG,  // longer than any frame
    FOREIGN,   // of a kind or a number that is not of this stream
};
constexpr uint32_t DAMAGES = 7;

// How often each kind of damage occurred.
class DamageCount {
public:
    uint64_t &operator[](Damage damage);
    uint64_t operator[](Damage damage) const;
    bool operator==(const DamageCount &other) const;
    uint64_t Sum() const;

    // "3 (2 flipped, 1 cut)"; "0" for none.
    std::string String() const;

private:
    std::array<uint64_t, DAMAGES> counts_{};
};

#endif  // EXAMPLES_DAMAGE_H
