// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Result codes of platform components: ERR_OK or an error. The host defines no names for individual errors.

#ifndef HOST_ERRORS_H
#define HOST_ERRORS_H

namespace OHOS {

using ErrCode = int;

constexpr ErrCode ERR_OK = 0;

#define SUCCEEDED(errCode) ((errCode) == OHOS::ERR_OK)
#define FAILED(errCode) ((errCode) != OHOS::ERR_OK)

}  // namespace OHOS

#endif  // HOST_ERRORS_H
