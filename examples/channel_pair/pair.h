// SPDX-License-Identifier: Apache-2.0
//
// The two sides of the example pair. Each runs in a process of its own, joined to the other by a socket that keeps
// message borders, and reports to who started it when it ends.

#ifndef EXAMPLES_STREAM_PAIR_H
#define EXAMPLES_STREAM_PAIR_H

#include <string>

#include "dh_utils_tools.h"
#include "input.h"
#include "offer.h"
#include "options.h"
#include "process.h"
#include "unique_fd.h"

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

// Sends the documents of the offer and the settings, then `input` to its end or until SIGINT, piece by piece, at a
// raised QoS level where the platform grants it, and the frame that ends the stream. Reports its steps as events.
SideReport RunSource(const PairLink &link, const PairOptions &options, StreamInput &input);

// Reads the documents and the settings, and writes every piece of the stream that arrives whole to `output`, where
// there is one; publishes that the source has come and gone, and dumps the stream where asked. Holds what arrived
// against what the end of the stream says, and reports its steps as events.
SideReport RunSink(const PairLink &link, const PairOptions &options, UniqueFd output);

#endif  // EXAMPLES_STREAM_PAIR_H
