// SPDX-License-Identifier: Apache-2.0

#include "refbase.h"

#include <algorithm>
#include <climits>

namespace OHOS {
namespace {

// The count during destruction: an sptr that the destructor creates does not destroy the object again.
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

RefBase::~RefBase() = default;

void RefBase::IncStrongRef(const void * /*owner*/)
{
    ++count_;
}

void RefBase::DecStrongRef(const void * /*owner*/)
{
    if (--count_ == 0) {
        count_ = DESTROYED;
        delete this;
    }
}

int RefBase::GetSptrRefCount()
{
    return std::max(count_.load(), 0);
}

}  // namespace OHOS
