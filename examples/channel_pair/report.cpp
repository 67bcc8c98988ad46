// SPDX-License-Identifier: Apache-2.0

#include "report.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace {

constexpr size_t NAME_WIDTH = 12;
constexpr double BYTES_PER_MB = 1e6;

uint64_t ResidentKilobytes()
{
    uint64_t all = 0;
    uint64_t resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * static_cast<uint64_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

}  // namespace

Summary::Summary(const std::string &title) : text_(title + "\n")
{
}

void Summary::Row(const std::string &name, const std::string &value)
{
    text_ += "  " + name + std::string(name.size() < NAME_WIDTH ? NAME_WIDTH - name.size() : 1, ' ') + value + "\n";
}

void Summary::Row(const std::string &name, uint64_t value)
{
    Row(name, std::to_string(value));
}

const std::string &Summary::Text() const
{
    return text_;
}

double Stopwatch::Seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

std::string Megabytes(double bytes)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f MB", bytes / BYTES_PER_MB);
    return text;
}

std::string SecondsText(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%g s", seconds);
    return text;
}

void AddLinkRows(Summary &summary, const LinkTotals &totals, double seconds)
{
    summary.Row("frames", totals.frames);
    summary.Row("bytes", totals.bytes);
    summary.Row("throughput", Megabytes(static_cast<double>(totals.bytes) / seconds) + "/s");
}

void MemoryWatch::Frame()
{
    if (++frames_ == WARM_UP_FRAMES) {
        kilobytesAtStart_ = ResidentKilobytes();
    }
}

void MemoryWatch::Stop()
{
    kilobytesAtEnd_ = ResidentKilobytes();
}

void MemoryWatch::AddRow(Summary &summary) const
{
    const std::string atStart =
        frames_ < WARM_UP_FRAMES ? "" : std::to_string(kilobytesAtStart_) + " KiB at the start, ";
    summary.Row("memory", atStart + std::to_string(kilobytesAtEnd_) + " KiB at the end");
}
