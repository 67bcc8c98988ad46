// SPDX-License-Identifier: Apache-2.0

#include "refbase.h"

#include <algorithm>
#include <atomic>
#include <climits>

namespace OHOS {

namespace {

// A count that no number of pointers lifts above zero: an object that is gone stays gone.
constexpr int GONE = INT_MIN / 2;

}  // namespace

class RefCounter {
public:
    std::atomic<int> strong{0};
    std::atomic<int> watchers{1};  // the object itself and its weak pointers
};

RefBase::RefBase() : counter_(new RefCounter)
{
}

RefBase::RefBase(const RefBase & /*other*/) : RefBase()
{
}

RefBase &RefBase::operator=(const RefBase & /*other*/)  // NOLINT(bugprone-unhandled-self-assignment): copies nothing
{
    return *this;
}

RefBase::~RefBase()
{
    counter_->strong = GONE;  // an object may end without ever having been counted
    Unwatch(counter_);
}

void RefBase::IncStrongRef(const void * /*owner*/)
{
    ++counter_->strong;
}

void RefBase::DecStrongRef(const void * /*owner*/)
{
    // The last count and the end are one step, lest a weak pointer revive the object between the two.
    int count = counter_->strong;
    while (!counter_->strong.compare_exchange_weak(count, count == 1 ? GONE : count - 1)) {
    }
    if (count == 1) {
        delete this;
    }
}

int RefBase::GetSptrRefCount()
{
    return std::max(counter_->strong.load(), 0);
}

RefCounter *RefBase::Watch() const
{
    return Watch(counter_);
}

RefCounter *RefBase::Watch(RefCounter *counter)
{
    if (counter != nullptr) {
        ++counter->watchers;
    }
    return counter;
}

void RefBase::Unwatch(RefCounter *counter)
{
    if (counter != nullptr && --counter->watchers == 0) {
        delete counter;
    }
}

bool RefBase::Promote(RefCounter *counter)
{
    if (counter == nullptr) {
        return false;
    }
    int count = counter->strong;
    while (count >= 0 && !counter->strong.compare_exchange_weak(count, count + 1)) {
    }
    return count >= 0;
}

}  // namespace OHOS
