// SPDX-License-Identifier: Apache-2.0
//
// The report of each side: rows of values, and the events of the library.

#ifndef EXAMPLES_CHANNEL_PAIR_REPORT_H
#define EXAMPLES_CHANNEL_PAIR_REPORT_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "transport.h"

// Formats a row as "  name        value\n".
std::string Row(const std::string &name, const std::string &value);

// Formats a time as "10 s".
std::string FormatSeconds(double seconds);

// Rows of the chunks, bytes and throughput since `start`.
std::string TotalRows(const Totals &totals, std::chrono::steady_clock::time_point start);

// Reports the stages of a business flow with OstraRadar, and listens to the events as a monitoring process would.
class BusinessFlow {
public:
    // Reports the start of the service. `side` is the name of the reporting function in each event.
    explicit BusinessFlow(std::string side);

    void ReportStart(bool isSuccess);
    void ReportEnd(bool isSuccess);

    // The number of events and of failures among them; with `isVerbose` a row for each event.
    std::string Rows(bool isVerbose) const;

private:
    struct Listener;

    std::string side_;
    std::shared_ptr<Listener> listener_;
};

#endif  // EXAMPLES_CHANNEL_PAIR_REPORT_H
