// SPDX-License-Identifier: Apache-2.0

#include "hisysevent/rate_limiter.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace ostra::host {
namespace {

constexpr size_t MAX_SITES = 30;
constexpr size_t MAX_SITE_KEY_LENGTH = 256;

std::string SiteKey(std::string_view eventName, const EventCallSite &site)
{
    std::string key(eventName);
    key.append("_").append(EventScalar::View(site.func)).append("_").append(std::to_string(site.line));
    key.resize(std::min(key.size(), MAX_SITE_KEY_LENGTH));
    return key;
}

int64_t WallClockSecond()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
}

}  // namespace

RateLimiter &RateLimiter::GetInstance()
{
    static auto &instance = *new RateLimiter;  // never destroyed: threads may write until the very end
    return instance;
}

bool RateLimiter::Admit(std::string_view eventName, const EventCallSite &site)
{
    std::string key = SiteKey(eventName, site);
    const int64_t now = WallClockSecond();

    const std::lock_guard<std::mutex> lock(mutex_);
    Budget &budget = Find(std::move(key));
    if (budget.count == 0 || now < budget.periodBegin || now - budget.periodBegin > site.period) {
        budget.periodBegin = now;
        budget.count = 0;
    }
    if (budget.count >= site.threshold) {
        return false;
    }
    ++budget.count;
    return true;
}

RateLimiter::Budget &RateLimiter::Find(std::string key)
{
    const auto found =
        std::find_if(budgets_.begin(), budgets_.end(), [&](const Budget &budget) { return budget.key == key; });
    if (found != budgets_.end()) {
        budgets_.splice(budgets_.begin(), budgets_, found);
        return budgets_.front();
    }
    budgets_.push_front({std::move(key), 0, 0});
    if (budgets_.size() > MAX_SITES) {
        budgets_.pop_back();
    }
    return budgets_.front();
}

}  // namespace ostra::host
