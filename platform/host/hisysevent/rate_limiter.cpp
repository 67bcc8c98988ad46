// SPDX-License-Identifier: Apache-2.0

#include "hisysevent/rate_limiter.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <list>
#include <mutex>
#include <string>
#include <utility>

namespace ostra::host {
namespace {

constexpr size_t MAX_SITES = 30;
constexpr size_t MAX_SITE_KEY_LENGTH = 256;

struct Budget {
    std::string key;
    int64_t periodBegin;  // wall-clock time in seconds
    uint32_t count;
};
using Budgets = std::list<Budget>;  // most recently used first

std::string SiteKey(std::string_view eventName, const EventCallSite &site)
{
    std::string key(eventName);
    key.append("_").append(EventScalar::View(site.func)).append("_").append(std::to_string(site.line));
    key.resize(std::min(key.size(), MAX_SITE_KEY_LENGTH));
    return key;
}

Budget &FindBudget(Budgets &budgets, std::string key)
{
    const auto found =
        std::find_if(budgets.begin(), budgets.end(), [&](const Budget &budget) { return budget.key == key; });
    if (found != budgets.end()) {
        budgets.splice(budgets.begin(), budgets, found);
        return budgets.front();
    }
    budgets.push_front({std::move(key), 0, 0});
    if (budgets.size() > MAX_SITES) {
        budgets.pop_back();
    }
    return budgets.front();
}

}  // namespace

bool IsWithinRateLimit(std::string_view eventName, const EventCallSite &site)
{
    static auto &mutex = *new std::mutex;  // never destroyed: threads may write during exit
    static auto &budgets = *new Budgets;
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    const int64_t now = time.tv_sec;

    const std::lock_guard<std::mutex> lock(mutex);
    Budget &budget = FindBudget(budgets, SiteKey(eventName, site));
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

}  // namespace ostra::host
