// SPDX-License-Identifier: Apache-2.0
//
// Registers the rows of the table and the curves of the pictures that scripts/bench makes. A row compares an operation
// with a baseline, because on a shared machine the ratio of two times from one run means more than either time:
//
//     const int ROW = AddRow("`Write`", Write, "the same by hand", WriteByHand, 1.6);
//
// bench/report.py reads what is registered here from Google Benchmark's JSON output.

#ifndef BENCH_RATIO_TABLE_H
#define BENCH_RATIO_TABLE_H

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <string>

// The bar for an operation that does the same work as its baseline. A correct build meets it on any x86-64 or Arm
// processor of the last ten years, also when other processes are busy.
constexpr double SAME_WORK = 1.6;

enum class TimeSource { CPU, MANUAL };

// The curves take minutes, so that they are registered alone, or not at all.
inline bool AreCurvesMeasured()
{
    return std::getenv("OSTRA_BENCH_CURVES") != nullptr;
}

// `name` must not contain a slash. `atMost` is the bar: the time of the operation divided by that of the baseline.
// Returns 0, so that a constant can be initialized with it.
template <typename Operation, typename Baseline>
int AddRow(const std::string &name, Operation measureOperation, const std::string &baselineName,
           Baseline measureBaseline, double atMost, TimeSource timeSource = TimeSource::CPU)
{
    if (AreCurvesMeasured()) {
        return 0;
    }
    auto *operation = benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        state.SetLabel(baselineName);
        state.counters["at most"] = atMost;
        measureOperation(state);
    });
    auto *baseline = benchmark::RegisterBenchmark((name + " (baseline)").c_str(), measureBaseline);
    if (timeSource == TimeSource::MANUAL) {
        operation->UseManualTime();
        baseline->UseManualTime();
    }
    return 0;
}

// Adds a curve to bench/`picture`: the time of `measure(state, size)` for sizes from `first` to `last`, which are the
// same for all curves of a picture. The baseline is added last.
template <typename Measure>
int AddCurve(const std::string &picture, const std::string &label, Measure measure, int64_t first, int64_t last)
{
    if (AreCurvesMeasured()) {
        benchmark::RegisterBenchmark((picture + ": " + label).c_str(),
                                     [=](benchmark::State &state) { measure(state, state.range()); })
            ->RangeMultiplier(4)
            ->Range(first, last);
    }
    return 0;
}

#endif  // BENCH_RATIO_TABLE_H
