// SPDX-License-Identifier: Apache-2.0

#include "refbase.h"

namespace OHOS {

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
        delete this;
    }
}

int RefBase::GetSptrRefCount()
{
    return count_;
}

}  // namespace OHOS
