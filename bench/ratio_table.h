// SPDX-License-Identifier: Apache-2.0
//
// Rows of the table that the benchmark program prints: a benchmark against its peer, both measured in the same run.
// Absolute times say little on a shared machine; the ratio of two that ran side by side says what we want to know.

#ifndef BENCH_RATIO_TABLE_H
#define BENCH_RATIO_TABLE_H

#include <string>
#include <vector>

struct RatioRow {
    std::string what;
    std::string benchmark;
    std::string against;
    std::string peer;  // name of the benchmark measured for `against`
    double atMost;     // wanted: time of the benchmark divided by time of the peer
};

// Adds a row; called from the initialisers of the benchmark files.
int AddRow(RatioRow row);

const std::vector<RatioRow> &Rows();

#endif  // BENCH_RATIO_TABLE_H
