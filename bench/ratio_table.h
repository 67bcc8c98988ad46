// SPDX-License-Identifier: Apache-2.0
//
// What the benchmark program prints and draws. Absolute times say little on a shared machine; the ratio of two that ran
// side by side says what we want to know. A file of benchmarks adds its rows and curves where it defines them:
//
//     BENCHMARK(WriteFast);
//     BENCHMARK(WriteByHand);
//     const int ROW = AddRow({"`Write`", "WriteFast", "the same by hand", "WriteByHand", 1.1});
//
// A new file needs no more than its line in CMakeLists.txt.

#ifndef BENCH_RATIO_TABLE_H
#define BENCH_RATIO_TABLE_H

#include <string>
#include <vector>

// A benchmark against its floor, or a peer that does the same.
struct RatioRow {
    std::string what;
    std::string benchmark;
    std::string against;
    std::string peer;  // name of the benchmark measured for `against`
    double atMost;     // wanted: time of the benchmark divided by time of the peer; 1 / 0.75 for 0.75 of its speed
};

// One line of a picture: a benchmark, its name starting with "Grow", that runs over a range of sizes. The curves of a
// picture have the same sizes.
struct Curve {
    std::string picture;
    std::string label;
    std::string benchmark;
};

// Called from the initialisers of the benchmark files; the result only gives those something to initialise.
int AddRow(RatioRow row);
int AddCurve(Curve curve);

#endif  // BENCH_RATIO_TABLE_H
