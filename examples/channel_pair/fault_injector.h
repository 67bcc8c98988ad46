// SPDX-License-Identifier: Apache-2.0
//
// Faults on the way from the source to the sink, in every way that Damage names, at random places that a seed repeats.
// The faults are told at the end of the stream, so that the sink can hold what it found against them.

#ifndef EXAMPLES_FAULTS_H
#define EXAMPLES_FAULTS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "transport.h"

// How long a stream is: in pieces, in seconds, or not known.
struct StreamLength {
    std::optional<uint64_t> pieces;
    std::optional<double> seconds;
};

struct FaultOptions {
    uint64_t count = 0;
    uint64_t seed = 1;
    std::optional<uint64_t> flippedFrame;  // gets one bit flipped, which nobody tells the sink
};

// The most faults that fit into a stream of so many pieces: two in a row would not stay apart.
uint64_t MostFaults(uint64_t pieces);

// Where and how pieces of the stream are damaged. In a stream of known length the places are spread over all of it:
// over its pieces, or over its time. In any other, up to 20 whole pieces lie between two of them.
class FaultPlan {
public:
    FaultPlan(const FaultOptions &options, const StreamLength &length);

    // Counts a piece, and tells how it is to be damaged, if at all; a fault that is due waits for a free piece.
    std::optional<Damage> NextPiece(bool isFree);

    // How many faults are still to come.
    uint64_t Left() const;

    // A number below `bound` for the details of a damage.
    size_t Random(size_t bound);

private:
    struct Fault {
        double place;  // in pieces or in seconds
        Damage damage;
    };

    std::mt19937_64 random_;
    bool isTimed_;
    std::chrono::steady_clock::time_point start_;  // of the first piece
    uint64_t pieces_ = 0;
    std::vector<Fault> faults_;
    size_t next_ = 0;
};

// A road that damages what the plan names. Settings, documents and the end of the stream pass whole.
class FaultyRoad : public Road {
public:
    // Keeps a reference to the road that it makes use of.
    FaultyRoad(Road &road, const FaultOptions &options, const StreamLength &length);

    Carried Carry(FrameKind kind, ByteView prefix, ByteView frame) override;

    // True when a frame was held back, to go behind the next one.
    bool IsHolding() const;

    // The faults so far, and those of the options that found no frame yet.
    const DamageCount &Done() const;
    uint64_t Left() const;

private:
    Carried Inflict(Damage damage, ByteView prefix, ByteView frame);
    Carried CarryHeld();
    Carried CarryForeign();

    Road &road_;
    FaultPlan plan_;
    std::optional<uint64_t> flippedFrame_;
    uint64_t frames_ = 0;
    DamageCount done_;
    std::vector<uint8_t> tooLong_;
    std::vector<uint8_t> held_;  // a prefix and a frame; empty for none
};

#endif  // EXAMPLES_FAULTS_H
