// SPDX-License-Identifier: Apache-2.0
//
// Replays how often a call site may write, by a wall clock that the test sets. Each case has call sites of its own, and
// forgets all earlier ones in time, so that it does not matter what was written before.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "hisysevent.h"
#include "host/recording.h"

using namespace OHOS::HiviewDFX;
using namespace replay;

namespace {

std::atomic<int64_t> g_wallClockMs{0};  // 0: the machine's

Fields WriteAtSite(const Fields &in)
{
    const std::string event = Text(in.at(1));
    const std::string func = Text(in.at(2));
    const std::string domain = in.size() > 5 ? Text(in[5]) : "DOMAIN";
    g_wallClockMs = Number<int64_t>(in.at(0));
    std::vector<std::pair<int, int>> results;  // with how often each came in a row
    for (int left = Number<int>(in.at(4)); left > 0; --left) {
        const int result =
            HiSysEvent::Write(func.c_str(), Number<int64_t>(in.at(3)), domain, event, HiSysEvent::BEHAVIOR);
        if (results.empty() || results.back().first != result) {
            results.emplace_back(result, 0);
        }
        ++results.back().second;
    }
    g_wallClockMs = 0;
    std::string shown;
    for (const auto &[result, times] : results) {
        shown += (shown.empty() ? "" : " ") + std::to_string(result) + "*" + std::to_string(times);
    }
    return {shown};
}

}  // namespace

// Takes the place of the C library's function, for the host platform too.
extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    constexpr int64_t msPerSecond = 1000;
    constexpr int64_t nsPerMs = 1000000;
    const int64_t ms = g_wallClockMs;
    if (clock != CLOCK_REALTIME || ms == 0) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    }
    now->tv_sec = static_cast<time_t>(ms / msPerSecond);
    now->tv_nsec = static_cast<long>(ms % msPerSecond * nsPerMs);
    return 0;
}

TEST(HostPlatformReplay, Limiter)
{
    Replay("recorded/hisysevent_rate_limiter.txt", 73, {{"site", WriteAtSite}});
}
