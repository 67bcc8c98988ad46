// SPDX-License-Identifier: Apache-2.0

#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr double FIRST_SECONDS = 0.5;
constexpr double PERIOD_SECONDS = 0.2;
constexpr char CLEARED_LINE[] = "\r\033[K";

}  // namespace

Progress::Progress(const StreamLength &length)
    : length_(length), isWatched_(isatty(STDERR_FILENO) != 0), nextAt_(FIRST_SECONDS)
{
}

Progress::~Progress()
{
    if (isShown_) {
        std::fputs(CLEARED_LINE, stderr);
    }
}

void Progress::Show(uint64_t pieces, uint64_t bytes)
{
    if (!isWatched_ || watch_.Seconds() < nextAt_) {
        return;
    }
    isShown_ = true;
    const double seconds = watch_.Seconds();
    nextAt_ = seconds + PERIOD_SECONDS;
    const auto sent = static_cast<double>(bytes);
    std::fprintf(stderr, "%ssent %s, %s/s", CLEARED_LINE, Megabytes(sent).c_str(), Megabytes(sent / seconds).c_str());
    const double done = length_.seconds  ? seconds / *length_.seconds
                        : length_.pieces ? static_cast<double>(pieces) / static_cast<double>(*length_.pieces)
                                         : 0;
    if (done > 0 && done <= 1) {
        std::fprintf(stderr, ", %.0f %%, %.0f s left", done * 100, seconds / done - seconds);
    }
    std::fflush(stderr);
}
