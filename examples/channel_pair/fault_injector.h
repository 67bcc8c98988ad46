// SPDX-License-Identifier: Apache-2.0
//
// Fault injection between the source and the sink: each kind of fault equally often, at random positions in the stream.
// A seed determines the positions.

#ifndef EXAMPLES_CHANNEL_PAIR_FAULT_INJECTOR_H
#define EXAMPLES_CHANNEL_PAIR_FAULT_INJECTOR_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "input.h"
#include "pair.h"
#include "transport.h"

// The maximum number of faults in a stream of `chunks`: a delayed chunk needs an intact one after it.
constexpr uint64_t MaxFaults(uint64_t chunks)
{
    return chunks / 2;
}

class FaultInjector {
public:
    FaultInjector(const FaultOptions &options, const StreamLength &length);

    struct Output {
        std::vector<Message> messages;  // to send instead of the original
        bool isDropped = false;         // the receiver must drop the content
    };

    // Returns the messages to send instead of `message`: itself unless a fault is due. The counted faults affect only
    // chunks of the stream; FaultOptions::flippedFrame may be a frame of any kind.
    Output Inject(FrameKind kind, uint64_t frameNumber, Message message);

    // Returns true while a delayed chunk waits for the next message to overtake it.
    bool IsDelaying() const
    {
        return !delayed_.empty();
    }

    const FaultCounts &InjectedCounts() const
    {
        return injected_;
    }

    // Returns the number of faults that have not been injected yet.
    uint64_t Remaining() const
    {
        return faults_.size() - next_ + (flippedFrame_ ? 1 : 0);
    }

private:
    struct PlannedFault {
        double position;  // in chunks or in seconds
        Fault fault;
    };

    bool IsDue();
    Output Apply(Fault fault, uint64_t frameNumber, Message message);
    size_t Random(size_t bound);

    std::mt19937_64 random_;
    std::optional<uint64_t> flippedFrame_;
    bool isTimed_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    uint64_t chunks_ = 0;
    std::vector<PlannedFault> faults_;
    size_t next_ = 0;
    Message delayed_;
    FaultCounts injected_{};
};

#endif  // EXAMPLES_CHANNEL_PAIR_FAULT_INJECTOR_H
