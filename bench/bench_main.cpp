// SPDX-License-Identifier: Apache-2.0
//
// Without options of its own: runs all benchmarks in five rounds, each repeated and in random order, and prints for
// each row of the table the median of the rounds' ratios and the spread between the lowest and the highest.
//
//     --strict           fails when a row is not as wanted
//     --curves=FOLDER    instead of the table writes the curves of each picture to FOLDER/PICTURE.dat: a line of
//                        labels, then a size and the seconds of each curve a line

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <set>
#include <string_view>

#include "ratio_table.h"

namespace {

constexpr int ROUNDS = 5;
constexpr char CURVE_BENCHMARKS[] = "^Grow";
constexpr char TABLE_BENCHMARKS[] = "-^Grow";

std::vector<RatioRow> &Rows()
{
    static std::vector<RatioRow> rows;
    return rows;
}

std::vector<Curve> &Curves()
{
    static std::vector<Curve> curves;
    return curves;
}

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context & /* context */) override
    {
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.error_occurred) {
                std::cerr << run.benchmark_name() << ": " << run.error_message << "\n";
                hasFailed_ = true;
            } else if (run.run_type == Run::RT_Iteration) {
                const long size = std::strtol(run.run_name.args.c_str(), nullptr, 10);
                times_[{run.run_name.function_name, size}].push_back(Seconds(run) /
                                                                     static_cast<double>(run.iterations));
                sizes_[run.run_name.function_name].insert(size);
            }
        }
    }

    bool HasFailed() const
    {
        return hasFailed_;
    }

    const std::set<long> &Sizes(const std::string &name)
    {
        return sizes_[name];
    }

    // Median of the seconds that an iteration took; 0 when it was not measured.
    double Time(const std::string &name, long size = 0) const
    {
        const auto found = times_.find({name, size});
        return found == times_.end() ? 0 : Median(found->second);
    }

private:
    // Of the processor, unless the benchmark asks for the clock's or brings its own: others may use the machine too.
    static double Seconds(const Run &run)
    {
        return run.run_name.time_type.empty() ? run.cpu_accumulated_time : run.real_accumulated_time;
    }

    bool hasFailed_ = false;
    std::map<std::pair<std::string, long>, std::vector<double>> times_;
    std::map<std::string, std::set<long>> sizes_;
};

struct Measured {
    std::vector<double> times;
    std::vector<double> peers;
    std::vector<double> ratios;
};

std::string Readable(double seconds)
{
    constexpr std::pair<double, const char *> units[] = {{1e-9, "ns"}, {1e-6, "µs"}, {1e-3, "ms"}};
    auto unit = std::begin(units);
    while (std::next(unit) != std::end(units) && seconds >= std::next(unit)->first) {
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof(text), "%.3g %s", seconds / unit->first, unit->second);
    return text;
}

// Returns whether the row is as wanted.
bool PrintRow(const RatioRow &row, const Measured &measured)
{
    const double ratio = Median(measured.ratios);
    const auto [lowest, highest] = std::minmax_element(measured.ratios.begin(), measured.ratios.end());
    const bool isWanted = ratio <= row.atMost;
    std::printf("| %s | %s | %s | %s | %.3f | %.3f to %.3f | %.3g | %s |\n", row.what.c_str(), row.against.c_str(),
                Readable(Median(measured.times)).c_str(), Readable(Median(measured.peers)).c_str(), ratio, *lowest,
                *highest, row.atMost, isWanted ? "yes" : "MISSED");
    return isWanted;
}

int PrintTable(bool isStrict)
{
    const std::string filter = benchmark::GetBenchmarkFilter();
    std::vector<Measured> table(Rows().size());
    for (int round = 0; round < ROUNDS; ++round) {
        Collector collector;
        benchmark::RunSpecifiedBenchmarks(&collector, filter.empty() ? TABLE_BENCHMARKS : filter);
        if (collector.HasFailed()) {
            return EXIT_FAILURE;
        }
        for (size_t i = 0; i < table.size(); ++i) {
            const double time = collector.Time(Rows()[i].benchmark);
            const double peer = collector.Time(Rows()[i].peer);
            if (time > 0 && peer > 0) {
                table[i].times.push_back(time);
                table[i].peers.push_back(peer);
                table[i].ratios.push_back(time / peer);
            }
        }
    }
    bool areAllWanted = true;
    std::printf("| what | against | time | its time | ratio | spread | at most | holds |\n");
    std::printf("|---|---|--:|--:|--:|---|--:|---|\n");
    for (size_t i = 0; i < table.size(); ++i) {
        if (!table[i].ratios.empty()) {
            areAllWanted = PrintRow(Rows()[i], table[i]) && areAllWanted;
        } else if (filter.empty()) {
            std::cerr << Rows()[i].what << ": not measured\n";
            return EXIT_FAILURE;
        }
    }
    return areAllWanted || !isStrict ? EXIT_SUCCESS : EXIT_FAILURE;
}

int WriteCurves(const std::string &folder)
{
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector, CURVE_BENCHMARKS);
    std::map<std::string, std::vector<Curve>> pictures;
    for (const Curve &curve : Curves()) {
        pictures[curve.picture].push_back(curve);
    }
    bool isWritten = !collector.HasFailed();
    for (const auto &[picture, curves] : pictures) {
        std::ofstream file(folder + "/" + picture + ".dat");
        file << "size";
        for (const Curve &curve : curves) {
            file << " \"" << curve.label << "\"";
        }
        file << "\n";
        for (const long size : collector.Sizes(curves.front().benchmark)) {
            file << size;
            for (const Curve &curve : curves) {
                file << " " << collector.Time(curve.benchmark, size);
            }
            file << "\n";
        }
        file.close();
        isWritten = isWritten && file.good();
    }
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int AddRow(RatioRow row)
{
    Rows().push_back(std::move(row));
    return 0;
}

int AddCurve(Curve curve)
{
    Curves().push_back(std::move(curve));
    return 0;
}

int main(int argc, char **argv)
{
    // Memory that was got once is kept: otherwise one benchmark pays for fresh pages where its peer happens not to.
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    std::string defaults[] = {"--benchmark_repetitions=7", "--benchmark_min_time=0.01",
                              "--benchmark_enable_random_interleaving=true"};
    std::vector<char *> arguments = {argv[0]};
    for (std::string &argument : defaults) {
        arguments.push_back(argument.data());
    }
    bool isStrict = false;
    std::string curveFolder;
    for (int i = 1; i < argc; ++i) {
        constexpr std::string_view curvesOption = "--curves=";
        const std::string_view argument = argv[i];
        if (argument == "--strict") {
            isStrict = true;
        } else if (argument.substr(0, curvesOption.size()) == curvesOption) {
            curveFolder = argument.substr(curvesOption.size());
        } else {
            arguments.push_back(argv[i]);
        }
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return EXIT_FAILURE;
    }
    return curveFolder.empty() ? PrintTable(isStrict) : WriteCurves(curveFolder);
}
