// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Types of distributed hardware. Releases of the platform may define more types.

#ifndef HOST_DEVICE_TYPE_H
#define HOST_DEVICE_TYPE_H

#include <cstdint>

namespace OHOS::DistributedHardware {

enum class DHType : uint32_t {
    UNKNOWN = 0,
    CAMERA = 0x01,
    AUDIO = 0x02,
    SCREEN = 0x08,
    GPS = 0x10,
    INPUT = 0x20,
    HFP = 0x40,
    A2D = 0x80,
    VIRMODEM_AUDIO = 0x100,
};

}  // namespace OHOS::DistributedHardware

#endif  // HOST_DEVICE_TYPE_H
