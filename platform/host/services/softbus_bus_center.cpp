// SPDX-License-Identifier: Apache-2.0

#include "softbus_bus_center.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <random>
#include <string>

namespace {

constexpr int32_t NULL_ARGUMENT = -1;
constexpr int32_t CANNOT_READ = -2;

// The functions below give nothing when something is there that cannot be read.
std::optional<std::string> HostName()
{
    std::array<char, HOST_NAME_MAX + 1> name{};
    return gethostname(name.data(), name.size()) == 0 ? std::make_optional(std::string(name.data())) : std::nullopt;
}

// The first line of a file; an empty text when there is no such file.
std::optional<std::string> FirstLine(const char *path)
{
    const std::unique_ptr<FILE, decltype(&std::fclose)> file(std::fopen(path, "re"), &std::fclose);
    if (file == nullptr) {
        return errno == ENOENT ? std::make_optional(std::string()) : std::nullopt;
    }
    std::array<char, 256> line{};
    if (std::fgets(line.data(), line.size(), file.get()) == nullptr && std::ferror(file.get()) != 0) {
        return std::nullopt;
    }
    return std::string(line.data(), std::strcspn(line.data(), "\n"));
}

// What tells this machine from others. A container may have no machine id.
std::optional<std::string> Identity()
{
    for (const char *path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
        std::optional<std::string> id = FirstLine(path);
        if (!id.has_value() || !id->empty()) {
            return id;
        }
    }
    return HostName();
}

// The machine id itself is confidential, so it is hashed; the standard fixes what seed_seq computes.
std::string NetworkId(const std::string &identity)
{
    std::seed_seq hash(identity.begin(), identity.end());
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
        return NULL_ARGUMENT;
    }
    const std::optional<std::string> identity = Identity();
    const std::optional<std::string> deviceName = HostName();
    if (!identity.has_value() || !deviceName.has_value()) {
        return CANNOT_READ;
    }
    const std::string networkId = NetworkId(*identity);
    *info = NodeBasicInfo{};
    std::copy(networkId.begin(), networkId.end(), info->networkId);
    std::copy_n(deviceName->begin(), std::min<size_t>(deviceName->size(), DEVICE_NAME_BUF_LEN - 1), info->deviceName);
    return 0;
}
