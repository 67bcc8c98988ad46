// SPDX-License-Identifier: Apache-2.0

#include "refbase.h"

#include <algorithm>
#include <atomic>
#include <climits>

namespace OHOS {

namespace {

// Far below zero: promotions never bring the count of a destroyed object back above zero.
constexpr int DESTROYED = INT_MIN / 2;

}  // namespace

class RefCounter {
public:
    std::atomic<int> strong{0};
    std::atomic<int> watchers{1};  // the object and its weak pointers
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
    counter_->strong = DESTROYED;  // an object may end without any strong pointer
    Unwatch(counter_);
}

void RefBase::IncStrongRef(const void * /*owner*/)
{
    ++counter_->strong;
}

void RefBase::DecStrongRef(const void * /*owner*/)
{
    // Dropping the last count and marking the object as destroyed is one step, so that no weak pointer revives it
    // between.
    int count = counter_->strong;
    while (!counter_->strong.compare_exchange_weak(count, count == 1 ? DESTROYED : count - 1)) {
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
