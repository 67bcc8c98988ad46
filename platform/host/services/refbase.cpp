// SPDX-License-Identifier: Apache-2.0

#include "refbase.h"

#include <algorithm>
#include <climits>

namespace OHOS {

namespace {

// Far below zero, so that promotions never bring the count of a destroyed object back above zero.
constexpr int DESTROYED = INT_MIN / 2;

}  // namespace

RefBase::RefBase() = default;

RefBase::RefBase(const RefBase & /*other*/) : RefBase()
{
}

RefBase &RefBase::operator=(const RefBase & /*other*/)  // NOLINT(bugprone-unhandled-self-assignment): copies nothing
{
    return *this;
}

RefBase::~RefBase()
{
    *strong_ = DESTROYED;  // an object may never have had a strong pointer
}

void RefBase::IncStrongRef(const void * /*owner*/)
{
    ++*strong_;
}

void RefBase::DecStrongRef(const void * /*owner*/)
{
    // Releasing the last reference and marking the object as destroyed is one atomic step, so that no weak pointer can
    // revive the object in between.
    int count = *strong_;
    while (!strong_->compare_exchange_weak(count, count == 1 ? DESTROYED : count - 1)) {
    }
    if (count == 1) {
        delete this;
    }
}

int RefBase::GetSptrRefCount()
{
    return std::max(strong_->load(), 0);
}

bool RefBase::Promote(Count *strong)
{
    if (strong == nullptr) {
        return false;
    }
    int count = *strong;
    while (count >= 0 && !strong->compare_exchange_weak(count, count + 1)) {
    }
    return count >= 0;
}

}  // namespace OHOS
