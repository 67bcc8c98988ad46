// SPDX-License-Identifier: Apache-2.0
//
// Registers the table rows and the plots of scripts/bench. A row compares an operation with a baseline: on a shared
// machine, the ratio of two times from one run is more reliable than either time.
//
//     const int ROW = AddRow("`Write`", Write, "`memcpy`", WriteBaseline, 1.6);
//
// bench/report.py reads what is registered here from Google Benchmark's JSON output.

#ifndef BENCH_RATIO_TABLE_H
#define BENCH_RATIO_TABLE_H

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <string>

// The limit for an operation that does the same work as its baseline. A correct build meets it on any x86-64 or Arm
// processor of the last ten years, even when other processes use the CPU.
constexpr double SAME_WORK_LIMIT = 1.6;

enum class TimeSource { CPU, MANUAL };

// Measuring the curves takes minutes, so they are registered only on request, and then without the rows.
inline bool AreCurvesMeasured()
{
    return std::getenv("OSTRA_BENCH_CURVES") != nullptr;
}

// Adds a row. `name` must not contain a slash. `maxRatio` is the limit for the ratio of the operation's time to the
// baseline's. Returns 0, so that the initializer of a constant can call it.
template <typename Operation, typename Baseline>
int AddRow(const std::string &name, Operation measureOperation, const std::string &baselineName,
           Baseline measureBaseline, double maxRatio, TimeSource timeSource = TimeSource::CPU)
{
    if (AreCurvesMeasured()) {
        return 0;
    }
    auto *operation = benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        state.SetLabel(baselineName);
        state.counters["max ratio"] = maxRatio;
        measureOperation(state);
    });
    auto *baseline = benchmark::RegisterBenchmark((name + " (baseline)").c_str(), measureBaseline);
    if (timeSource == TimeSource::MANUAL) {
        operation->UseManualTime();
        baseline->UseManualTime();
    }
    return 0;
}

// A benchmark of inputs of different sizes.
using SizedBenchmark = void (*)(benchmark::State &state, int64_t size);

// Returns the benchmark for one size, for AddRow.
inline auto WithSize(SizedBenchmark measure, int64_t size)
{
    return [=](benchmark::State &state) {
        measure(state, size);
    };
}

// Adds a curve to the plot `plot`: time against size, from `first` to `last`, which are the same for all curves of a
// plot. The label of a baseline starts with "baseline".
inline int AddCurve(const std::string &plot, const std::string &label, SizedBenchmark measure, int64_t first,
                    int64_t last)
{
    if (AreCurvesMeasured()) {
        benchmark::RegisterBenchmark((plot + ": " + label).c_str(),
                                     [=](benchmark::State &state) { measure(state, state.range()); })
            ->RangeMultiplier(4)
            ->Range(first, last);
    }
    return 0;
}

#endif  // BENCH_RATIO_TABLE_H
