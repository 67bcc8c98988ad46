// SPDX-License-Identifier: Apache-2.0
//
// The example pair: a source process sends an audio stream to a sink process in channel frames, and the sink checks
// that all of it arrives. This header declares what both sides share. Start reading at main.cpp, then continue with
// source.cpp, sink.cpp and transport.h.

#ifndef EXAMPLES_CHANNEL_PAIR_PAIR_H
#define EXAMPLES_CHANNEL_PAIR_PAIR_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "dh_utils_tools.h"

// 48 kHz, 16 bits, stereo, in chunks of 20 ms.
constexpr uint32_t SAMPLE_RATE = 48000;
constexpr uint32_t CHANNELS = 2;
constexpr uint32_t BYTES_PER_SAMPLE = 2;
constexpr uint32_t CHUNK_MS = 20;
constexpr uint32_t CHUNK_BYTES = SAMPLE_RATE / 1000 * CHUNK_MS * CHANNELS * BYTES_PER_SAMPLE;

constexpr char STANDARD_STREAM[] = "-";  // as a file name: standard input or output

struct FaultOptions {
    uint64_t count = 0;
    uint64_t seed = 1;
    std::optional<uint64_t> flippedFrame;  // a frame to corrupt; not counted in the END frame
};

struct PairOptions {
    std::string inputPath;          // empty: a generated tone
    std::string outputPath;         // where the sink writes the stream; empty: nowhere
    std::string tracePath;          // where the source writes its messages in hexadecimal; empty: nowhere
    std::optional<double> seconds;  // how long the tone is sent
    FaultOptions faults;
    double timeout = 10;    // seconds to wait for the other side
    bool isDumped = false;  // the sink dumps the stream
    bool isVerbose = false;
};

using ParcelMap = std::map<int32_t, std::string>;

// What the source sends before the stream. Created before the fork, so that the sink can compare it.
struct StreamDescription {
    OHOS::DistributedHardware::OstraAdapter::DHConnectInfo connection;
    std::string device;   // device document
    std::string service;  // service document
    ParcelMap settings;
};

constexpr char DEVICE_NAME[] = "desk tablet";

// Keys of the map in the frame that ends a stream. All values are decimal numbers. A chunk is intact if no injected
// fault made it unusable.
enum EndKey : int32_t {
    SENT_CHUNKS,
    INTACT_CHUNKS,
    INTACT_BYTES,
    INTACT_DIGEST,
    FIRST_FAULT_COUNT,  // one key for each Fault, in that order: how often it was injected
};

// The outcome of one side.
struct SideReport {
    std::string summary;      // rows of values
    std::string failure;      // empty on success
    std::string consequence;  // a failure that a failure of the other side may have caused
    std::string result;       // set on success; by the source only if the user interrupted it
};

class Input;

// Sends the description, then `input` up to its end or SIGINT, then the frame that ends the stream. Writes all messages
// to `trace` unless that is -1.
SideReport RunSource(int socket, const StreamDescription &description, const PairOptions &options, Input &input,
                     int trace);

// Receives these frames, writes the stream to `output` unless that is -1, and checks that all of it arrived.
SideReport RunSink(int socket, const StreamDescription &description, const PairOptions &options, int output);

#endif  // EXAMPLES_CHANNEL_PAIR_PAIR_H
