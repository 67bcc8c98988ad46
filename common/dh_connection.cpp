// SPDX-License-Identifier: Apache-2.0

#include <limits>
#include <tuple>

#include "dh_utils_tools.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Adds one byte for the NUL. SIZE_MAX cannot be incremented, but its allocation fails anyway.
size_t AllocationSize(size_t capacity)
{
    return capacity == std::numeric_limits<size_t>::max() ? capacity : capacity + 1;
}

std::string OrderingKey(const DHConnectInfo &info)
{
    return info.sourceNetworkId + info.sinkNetworkId + info.sourceIp + info.sinkIp + info.sinkBrMac +
           std::to_string(info.port);
}

auto Identity(const DHConnectInfo &info)
{
    return std::tie(info.sourceNetworkId, info.sinkNetworkId, info.sourceIp, info.sinkIp, info.port, info.sinkBrMac);
}

}  // namespace

DHData::DHData(size_t capacity)
{
    if (capacity == 0) {
        return;
    }
    data_ = new uint8_t[AllocationSize(capacity)]();
    capacity_ = capacity;
    size_ = capacity;
}

DHData::~DHData()
{
    delete[] data_;
    data_ = nullptr;
}

uint64_t DHData::Size() const
{
    return size_;
}

uint64_t DHData::Capacity() const
{
    return capacity_;
}

uint64_t DHData::Offset() const
{
    return offset_;
}

uint8_t *DHData::Data() const
{
    return data_ + offset_;
}

int32_t DHData::SetRange(size_t offset, size_t size)
{
    size_t end = 0;
    // The sum may wrap around; a plain addition would abort in builds with overflow checks.
    static_cast<void>(__builtin_add_overflow(offset, size, &end));
    if (offset > capacity_ || end > capacity_) {
        return -1;
    }
    offset_ = offset;
    size_ = size;
    return 0;
}

std::string DHConnectInfo::String() const
{
    return "sourceNetworId: " + GetAnonyString(sourceNetworkId) + " sinkNetworkId: " + GetAnonyString(sinkNetworkId) +
           " sourceIp: " + GetAnonyString(sourceIp) + " sinkIp: " + GetAnonyString(sinkIp) +
           " sinkBrMac: " + GetAnonyString(sinkBrMac) + " port: " + GetAnonyInt32(port);
}

bool DHConnectInfo::operator==(const DHConnectInfo &other) const
{
    return Identity(*this) == Identity(other);
}

bool DHConnectInfo::operator<(const DHConnectInfo &other) const
{
    return OrderingKey(*this) < OrderingKey(other);
}

DHConnectDevice::DHConnectDevice(int session, DHBusinessId business, DHChannelType channel, DHConnectInfo &connection)
    : sessionId(session), connectInfo(connection), businessId(business), channelType(channel)
{
}

DHConnectDevice::~DHConnectDevice() = default;

}  // namespace OHOS::DistributedHardware::OstraAdapter
