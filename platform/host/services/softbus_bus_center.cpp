// SPDX-License-Identifier: Apache-2.0

#include "softbus_bus_center.h"

#include <nettle/hmac.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

namespace {

constexpr int32_t INVALID_ARGUMENT = -1;
constexpr int32_t READ_FAILED = -2;

// The functions below return nullopt if reading fails.
std::optional<std::string> HostName()
{
    std::array<char, HOST_NAME_MAX + 1> name{};
    return gethostname(name.data(), name.size()) == 0 ? std::make_optional(std::string(name.data())) : std::nullopt;
}

// Returns the first line of a file, or an empty string if the file does not exist.
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

// Returns the machine id or, if there is none, as in a container, the host name.
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

// The machine id is confidential: a keyed hash does not reveal it, and differs from ids that other programs derive.
std::string NetworkId(const std::string &identity)
{
    constexpr char key[] = "ostra_host_platform network id";
    hmac_sha256_ctx context;
    hmac_sha256_set_key(&context, sizeof(key) - 1, reinterpret_cast<const uint8_t *>(key));
    hmac_sha256_update(&context, identity.size(), reinterpret_cast<const uint8_t *>(identity.data()));
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest{};
    hmac_sha256_digest(&context, digest.size(), digest.data());

    static_assert(2 * SHA256_DIGEST_SIZE == NETWORK_ID_BUF_LEN - 1);
    std::string networkId;
    for (const uint8_t byte : digest) {
        networkId += "0123456789abcdef"[byte >> 4];
        networkId += "0123456789abcdef"[byte & 0xF];
    }
    return networkId;
}

}  // namespace

int32_t GetLocalNodeDeviceInfo(const char *pkgName, NodeBasicInfo *info)
{
    if (pkgName == nullptr || info == nullptr) {
        return INVALID_ARGUMENT;
    }
    const std::optional<std::string> identity = Identity();
    const std::optional<std::string> deviceName = HostName();
    if (!identity.has_value() || !deviceName.has_value()) {
        return READ_FAILED;
    }
    const std::string networkId = NetworkId(*identity);
    *info = NodeBasicInfo{};
    std::copy(networkId.begin(), networkId.end(), info->networkId);
    static_assert(HOST_NAME_MAX < DEVICE_NAME_BUF_LEN);
    std::copy(deviceName->begin(), deviceName->end(), info->deviceName);
    return 0;
}
