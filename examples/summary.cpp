// SPDX-License-Identifier: Apache-2.0

#include "summary.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr size_t NAME_WIDTH = 16;
constexpr double BYTES_PER_MB = 1e6;
constexpr double FIRST_PROGRESS_SECONDS = 0.5;
constexpr double PROGRESS_PERIOD_SECONDS = 0.2;

std::string Megabytes(double bytes)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f MB", bytes / BYTES_PER_MB);
    return text;
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

void Summary::Print() const
{
    std::fputs(text_.c_str(), stdout);
    std::fflush(stdout);
}

double Stopwatch::Seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void AddLinkRows(Summary &summary, const LinkCount &count, const std::string &connection, double seconds)
{
    summary.Row("frames", count.frames);
    summary.Row("bytes", count.bytes);
    summary.Row("CRC mismatches", count.crcMismatches);
    summary.Row("connection", connection);
    summary.Row("throughput", Megabytes(static_cast<double>(count.bytes) / seconds) + "/s");
}

Progress::Progress() : isWatched_(isatty(STDERR_FILENO) != 0), nextAt_(FIRST_PROGRESS_SECONDS)
{
}

Progress::~Progress()
{
    if (isShown_) {
        std::fputs("\n", stderr);
    }
}

void Progress::Show(uint64_t bytes)
{
    if (!isWatched_ || watch_.Seconds() < nextAt_) {
        return;
    }
    isShown_ = true;
    nextAt_ = watch_.Seconds() + PROGRESS_PERIOD_SECONDS;
    std::fprintf(stderr, "\rsent %s", Megabytes(static_cast<double>(bytes)).c_str());
}
