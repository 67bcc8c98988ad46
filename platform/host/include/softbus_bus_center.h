// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// SoftBus client on the host: describes the local node only. The function is thread-safe. A C compiler accepts this
/// header.

#ifndef HOST_SOFTBUS_BUS_CENTER_H
#define HOST_SOFTBUS_BUS_CENTER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NETWORK_ID_BUF_LEN 65
#define DEVICE_NAME_BUF_LEN 128

/// Describes a node. The platform's structure has additional fields after these.
typedef struct {
    char networkId[NETWORK_ID_BUF_LEN];
    char deviceName[DEVICE_NAME_BUF_LEN];
    uint16_t deviceTypeId;
} NodeBasicInfo;

/// Describes the local node. The network id has 64 hexadecimal digits and is a keyed hash (HMAC-SHA-256) of the machine
/// id, so that it is stable and does not reveal that id; if there is no machine id (no file, or an empty one), the host
/// name is hashed instead. The device name is the host name, and the device type is 0.
///
/// Returns 0, or one of these errors without changing `info`:
///   - -1: an argument is null
///   - -2: the machine id or the host name cannot be read
int32_t GetLocalNodeDeviceInfo(const char *pkgName, NodeBasicInfo *info);

#ifdef __cplusplus
}
#endif

#endif  // HOST_SOFTBUS_BUS_CENTER_H
