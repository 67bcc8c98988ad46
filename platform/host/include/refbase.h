// SPDX-License-Identifier: Apache-2.0
//
// The platform's strong pointer on the host, where the standard's shared pointer serves: sptr<T>(new T(...)).

#ifndef HOST_REFBASE_H
#define HOST_REFBASE_H

#include <memory>

namespace OHOS {

template <typename T>
using sptr = std::shared_ptr<T>;

}  // namespace OHOS

#endif  // HOST_REFBASE_H
