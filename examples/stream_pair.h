// SPDX-License-Identifier: Apache-2.0
//
// The two sides of the example pair. Each runs in a process of its own, joined to the other by a socket that keeps
// message borders, and prints a summary to standard output when it ends.

#ifndef EXAMPLES_STREAM_PAIR_H
#define EXAMPLES_STREAM_PAIR_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "dh_utils_tools.h"
#include "offer.h"

// The stream's format: 48 kHz, 16 bits, stereo, sent in pieces of 20 ms.
constexpr uint32_t SAMPLE_RATE = 48000;
constexpr uint32_t CHANNELS = 2;
constexpr uint32_t BYTES_PER_SAMPLE = 2;
constexpr uint32_t PIECE_MS = 20;
constexpr uint32_t PIECE_BYTES = SAMPLE_RATE / 1000 * PIECE_MS * CHANNELS * BYTES_PER_SAMPLE;

struct PairOptions {
    std::optional<uint64_t> flippedFrame;  // the frame that gets a bit flipped on the way
    bool isDumped = false;                 // whether the sink dumps the stream, parameter or not
};

// Keys of the settings map that the source hands to the sink.
enum StreamSetting : int32_t {
    SETTING_SAMPLE_RATE = 1,  // Hz
    SETTING_CHANNELS = 2,
    SETTING_PIECE_MS = 3,
};

// What both sides know of the link between them.
struct PairLink {
    int socket = -1;  // this side's end
    OHOS::DistributedHardware::OstraAdapter::DHConnectInfo connection;
    Offer offer;
};

// Sends the documents of the offer and the settings, then reads `input` to its end and sends it piece by piece, at a
// raised QoS level where the platform grants it. Both sides report their steps as events. Returns true when all of it
// was sent.
bool RunSource(const PairLink &link, const PairOptions &options, FILE *input);

// Reads the documents and the settings, and writes every piece of the stream that arrives whole to `output`; publishes
// that the source has come and gone, and dumps the stream where asked. Returns true when nothing was broken or lost and
// the source's word was understood.
bool RunSink(const PairLink &link, const PairOptions &options, FILE *output);

#endif  // EXAMPLES_STREAM_PAIR_H
