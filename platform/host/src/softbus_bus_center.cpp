// SPDX-License-Identifier: Apache-2.0

#include "softbus_bus_center.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>

namespace {

std::string HostName()
{
    std::array<char, DEVICE_NAME_BUF_LEN> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

std::string MachineId()
{
    for (const char *path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
        std::string id;
        if (std::getline(std::ifstream(path), id) && !id.empty()) {
            return id;
        }
    }
    return HostName();  // a container may have no machine id
}

// The machine id itself is confidential, so it is hashed; the standard fixes what seed_seq computes.
std::string NetworkId()
{
    const std::string machineId = MachineId();
    std::seed_seq hash(machineId.begin(), machineId.end());
    std::array<uint32_t, (NETWORK_ID_BUF_LEN - 1) / 8> words{};
    hash.generate(words.begin(), words.end());

    std::string networkId;
    for (uint32_t word : words) {
        std::array<char, 9> digits{};
        std::snprintf(digits.data(), digits.size(), "%08x", word);
        networkId += digits.data();
    }
    return networkId;
}

}  // namespace

int32_t GetLocalNodeDeviceInfo(const char *pkgName, NodeBasicInfo *info)
{
    if (pkgName == nullptr || info == nullptr) {
        return -1;
    }
    const std::string networkId = NetworkId();
    const std::string deviceName = HostName();
    *info = NodeBasicInfo{};
    std::copy(networkId.begin(), networkId.end(), info->networkId);
    std::copy(deviceName.begin(), deviceName.end(), info->deviceName);
    return 0;
}
