// SPDX-License-Identifier: Apache-2.0
//
// The table that each side of the example pair makes at its end, and the memory that it tells there.

#ifndef EXAMPLES_SUMMARY_H
#define EXAMPLES_SUMMARY_H

#include <chrono>
#include <cstdint>
#include <string>

#include "transport.h"

// Rows of a name and a value.
class Summary {
public:
    explicit Summary(const std::string &title);
    void Row(const std::string &name, const std::string &value);
    void Row(const std::string &name, uint64_t value);
    const std::string &Text() const;

private:
    std::string text_;
};

// Time since it was made.
class Stopwatch {
public:
    double Seconds() const;

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// "12.3 MB".
std::string Megabytes(double bytes);

// "10 s".
std::string SecondsText(double seconds);

// Adds the rows that both sides have in common.
void AddLinkRows(Summary &summary, const LinkTotals &totals, double seconds);

// The resident memory of this process while it streams. The first frames are left out: they fill the buffers and pools
// that stay from then on.
class MemoryWatch {
public:
    void Frame();
    void Stop();
    void AddRow(Summary &summary) const;

private:
    static constexpr uint64_t WARM_UP_FRAMES = 20000;
    uint64_t frames_ = 0;
    uint64_t kilobytesAtStart_ = 0;
    uint64_t kilobytesAtEnd_ = 0;
};

#endif  // EXAMPLES_SUMMARY_H
