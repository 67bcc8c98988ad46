// SPDX-License-Identifier: Apache-2.0
//
// Runs all benchmarks, repeated and in random order, and prints for each row of the table the ratio of the medians.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>

#include "ratio_table.h"

namespace {

class MedianCollector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context & /* context */) override
    {
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                times_[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                             static_cast<double>(run.iterations));
            }
        }
    }

    // Seconds an iteration; 0 when it was not measured.
    double Median(const std::string &name) const
    {
        const auto found = times_.find(name);
        if (found == times_.end()) {
            return 0;
        }
        std::vector<double> times = found->second;
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

private:
    std::map<std::string, std::vector<double>> times_;
};

// Returns whether every row that was measured is as wanted.
bool PrintTable(const MedianCollector &collector)
{
    constexpr double nsPerSecond = 1e9;
    bool allWanted = true;
    std::printf("| what | against | time | peer | ratio | wanted | |\n|---|---|---|---|---|---|---|\n");
    for (const RatioRow &row : Rows()) {
        const double time = collector.Median(row.benchmark);
        const double peer = collector.Median(row.peer);
        if (time <= 0 || peer <= 0) {
            continue;
        }
        const bool isWanted = time / peer <= row.atMost;
        allWanted = allWanted && isWanted;
        std::printf("| %s | %s | %.1f ns | %.1f ns | %.3f | at most %.3g | %s |\n", row.what.c_str(),
                    row.against.c_str(), time * nsPerSecond, peer * nsPerSecond, time / peer, row.atMost,
                    isWanted ? "ok" : "MISSED");
    }
    return allWanted;
}

std::vector<RatioRow> &MutableRows()
{
    static std::vector<RatioRow> rows;
    return rows;
}

}  // namespace

int AddRow(RatioRow row)
{
    MutableRows().push_back(std::move(row));
    return 0;
}

const std::vector<RatioRow> &Rows()
{
    return MutableRows();
}

int main(int argc, char **argv)
{
    // Memory that was got once is kept: otherwise one benchmark pays for fresh pages where its peer happens not to.
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    std::string defaults[] = {"--benchmark_repetitions=31", "--benchmark_min_time=0.01",
                              "--benchmark_enable_random_interleaving=true"};
    std::vector<char *> arguments = {argv[0]};
    for (std::string &argument : defaults) {
        arguments.push_back(argument.data());
    }
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return EXIT_FAILURE;
    }
    MedianCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    return PrintTable(collector) ? EXIT_SUCCESS : EXIT_FAILURE;
}
