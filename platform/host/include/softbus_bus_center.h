// SPDX-License-Identifier: Apache-2.0
//
// SoftBus client on the host: knows the local node only. The function may be called from any thread at once. A C
// compiler accepts this header.

#ifndef HOST_SOFTBUS_BUS_CENTER_H
#define HOST_SOFTBUS_BUS_CENTER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NETWORK_ID_BUF_LEN 65
#define DEVICE_NAME_BUF_LEN 128

// The platform's structure has further fields behind these.
typedef struct {
    char networkId[NETWORK_ID_BUF_LEN];
    char deviceName[DEVICE_NAME_BUF_LEN];
    uint16_t deviceTypeId;
} NodeBasicInfo;

// Fills `info` with the local node: a network id of 64 hexadecimal digits that is derived from the machine id and so
// stays the same on one machine (from the host name where there is no machine id: no such file, or an empty one), the
// host name as the device name (cut to fit), device type 0. Returns 0, or, with `info` unchanged, -1 for a null
// argument and -2 when the machine id or the host name cannot be read: another identity is never given instead.
int32_t GetLocalNodeDeviceInfo(const char *pkgName, NodeBasicInfo *info);

#ifdef __cplusplus
}
#endif

#endif  // HOST_SOFTBUS_BUS_CENTER_H
