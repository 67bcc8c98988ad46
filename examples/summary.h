// SPDX-License-Identifier: Apache-2.0
//
// The table that each side of the example pair prints at its end, and the progress line of a long run.

#ifndef EXAMPLES_SUMMARY_H
#define EXAMPLES_SUMMARY_H

#include <chrono>
#include <cstdint>
#include <string>

#include "channel_link.h"

// Rows of a name and a value. Prints as one piece, so that the tables of two processes do not mix.
class Summary {
public:
    explicit Summary(const std::string &title);
    void Row(const std::string &name, const std::string &value);
    void Row(const std::string &name, uint64_t value);
    void Print() const;

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

// Adds the rows that both sides have in common.
void AddLinkRows(Summary &summary, const LinkCount &count, const std::string &connection, double seconds);

// One line on standard error, renewed several times a second while a terminal watches.
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    void Show(uint64_t bytes);

private:
    bool isWatched_;
    bool isShown_ = false;
    double nextAt_;
    Stopwatch watch_;
};

#endif  // EXAMPLES_SUMMARY_H
