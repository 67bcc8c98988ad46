// SPDX-License-Identifier: Apache-2.0
//
// The subcommands of ostra-inspect, and what they share: input and the library's log. main.cpp contains only the
// command line, so that the fuzzer can call everything else.

#ifndef TOOLS_INSPECT_H
#define TOOLS_INSPECT_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "report.h"

/// Thrown if the input cannot be read or parsed. The message is one line.
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Input (input.cpp). All functions throw InputError if the input cannot be read.

// Limits, which bound the memory: real inputs are far smaller.
constexpr size_t MAX_FRAME_BYTES = size_t{64} << 20;
constexpr size_t MAX_DOCUMENT_BYTES = size_t{1} << 20;  // also of a parcel and of an event

using InputFile = std::unique_ptr<FILE, int (*)(FILE *)>;

/// Opens a file. "-" is standard input; so is "", but then throws InputError if standard input is a terminal.
InputFile OpenInput(const std::string &path);

/// Returns the bytes of hexadecimal arguments, of the file that a single argument names, or of standard input. Throws
/// InputError if a file or standard input has more than `limit` bytes.
std::string ReadBytes(const std::vector<std::string> &arguments, size_t limit);

/// Returns the document of a file or of standard input, or the argument itself if it begins with "{" and no such file
/// exists. Throws InputError if a file or standard input has more than MAX_DOCUMENT_BYTES.
std::string ReadDocument(const std::string &argument);

/// Parses pairs of hexadecimal digits, which spaces, commas and "0x" may separate.
std::string ParseHex(const std::string &digits);

// The library's log (library_log.cpp), which contains the reasons why the library rejected or skipped something.

/// Starts collecting warnings and errors. Disables the log on standard error unless the environment sets a level.
void CollectLog();

/// Returns the first ten warnings and errors since the last call, on one line.
std::string TakeLogMessages();

// The subcommands. Those that return an Inspection throw InputError if there is nothing to report; otherwise they set
// `error` if the input was rejected.

struct Inspection {
    JsonTree report{cJSON_CreateObject()};
    std::string content;  // of a frame
    std::string error;    // why the input was rejected; empty if it was accepted
};

struct FrameOptions {
    size_t skip = 0;  // number of bytes before the frame
    std::string crc;  // expected CRC in hexadecimal; empty: not checked
};

/// `bytes` has at most MAX_FRAME_BYTES and becomes the content without a copy.
Inspection InspectFrame(std::string bytes, const FrameOptions &options);
Inspection InspectService(const std::string &document);
Inspection InspectAudio(const std::string &document);
Inspection InspectDevice(const std::string &document);
Inspection InspectParcel(const std::string &bytes);

/// Returns a hex dump of the first 512 bytes: offset, bytes and characters, 16 bytes per line.
std::string HexDump(const std::string &bytes);

/// Returns a warning if the JSON contains an escaped NUL (\u0000), otherwise "".
std::string NulWarning(std::string_view json);

/// Returns the name of an OSTRA_JSON_ code, or "" for any other number.
std::string ResultName(int32_t code);

struct EventOptions {
    bool isFailedOnly = false;
    std::optional<int> pid;
    bool isJson = false;
};

/// Prints each event as soon as its line is read, so that the output of a running process can be followed. Throws
/// InputError at the end if there were other lines.
void PrintEvents(const std::string &path, const EventOptions &options);

/// Returns the event of one line, or null if it is not an event of the library.
JsonTree ParseEvent(const std::string &line);

/// Returns the row of an event without a newline.
std::string FormatEvent(const cJSON *event);

#endif  // TOOLS_INSPECT_H
