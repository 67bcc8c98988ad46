// SPDX-License-Identifier: Apache-2.0
//
// What ostra-inspect reads, one function for each subcommand, and what they share: input and the library's log.
// main.cpp holds the command line alone, so that the fuzzer can call everything else.

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

/// Input that cannot be read or is not of the kind asked for. The message is one line.
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Input (input.cpp). All functions throw InputError if the input cannot be read.

using InputFile = std::unique_ptr<FILE, int (*)(FILE *)>;

/// Opens a file. "-" is standard input, and so is "" unless that is a terminal, which is an error.
InputFile OpenInput(const std::string &path);

/// Returns the bytes of hexadecimal arguments, or of the file that the only argument names, or of standard input.
std::string ReadBytes(const std::vector<std::string> &arguments);

/// Returns the document of a file or of standard input, or the argument itself if it begins with "{" and no such file
/// exists.
std::string ReadDocument(const std::string &argument);

/// Parses pairs of hexadecimal digits, which spaces, commas and "0x" may separate.
std::string ParseHex(const std::string &digits);

// The library's log (library_log.cpp), which says why the library refused or skipped something.

/// Starts to collect warnings and errors, and turns off the log on standard error unless the environment sets a level.
void CollectLog();

/// Returns and forgets the first ten warnings and errors since the last call, on one line.
std::string TakeReasons();

// The subcommands. All but PrintEvents throw InputError if there is nothing to report.

struct Finding {
    JsonTree report = NewObject();
    std::string content;  // of a frame
    std::string refusal;  // why the input was refused; empty if it was not
};

struct FrameOptions {
    size_t skip = 0;  // bytes ahead of the frame
    std::string crc;  // that the frame must have, in hexadecimal; empty for any
};

Finding InspectFrame(std::string bytes, const FrameOptions &options);
Finding InspectService(const std::string &document);
Finding InspectAudio(const std::string &document);
Finding InspectDevice(const std::string &document);
Finding InspectParcel(const std::string &bytes);

/// Returns offsets, bytes and characters of the first 512 bytes, 16 a line.
std::string HexView(const std::string &bytes);

/// Returns the name of an OSTRA_JSON_ code, or "" for any other number.
std::string ResultName(int32_t code);

struct EventOptions {
    bool isFailedOnly = false;
    std::optional<int> pid;
    bool isJson = false;
};

/// Prints each event as soon as its line is read, so that a pipe can be followed. Throws InputError at the end if there
/// were other lines.
void PrintEvents(const std::string &path, const EventOptions &options);

/// Returns the event of one line, or null if it is not an event of the library.
JsonTree ParseEvent(const std::string &line);

/// Returns the row of an event without a line end.
std::string EventRow(const cJSON *event);

#endif  // TOOLS_INSPECT_H
