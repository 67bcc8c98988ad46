// SPDX-License-Identifier: Apache-2.0

#include "frame_order.h"

FrameOrder::Place FrameOrder::Take(uint32_t sequence)
{
    const auto ahead = static_cast<uint32_t>((sequence - next_) % NUMBERS);
    if (ahead < WINDOW) {
        for (uint32_t skipped = 0; skipped < ahead; ++skipped) {
            taken_.reset(next_++ % WINDOW);
        }
        taken_.set(next_ % WINDOW);
        return {next_++, std::nullopt};
    }
    const uint32_t behind = NUMBERS - ahead;
    if (behind > WINDOW || behind > next_) {
        return {0, Damage::FOREIGN};
    }
    return {0, taken_.test((next_ - behind) % WINDOW) ? Damage::REPEATED : Damage::LATE};
}
