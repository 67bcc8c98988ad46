// SPDX-License-Identifier: Apache-2.0

#include "parcel_map.h"

#include <cerrno>

#include "ipc_utils.h"
#include "message_parcel.h"

using OHOS::DistributedHardware::OstraAdapter::IpcUtils;

bool SendMap(FrameSender &sender, FrameKind kind, const ParcelMap &map)
{
    OHOS::MessageParcel parcel;
    if (!IpcUtils::Marshalling(parcel, map)) {
        errno = ENOMEM;
        return false;
    }
    auto *const data = reinterpret_cast<uint8_t *>(parcel.GetData());  // NOLINT(performance-no-int-to-ptr)
    return sender.Send(kind, {data, parcel.GetDataSize()});
}

std::optional<ParcelMap> ReadMap(ByteView content)
{
    OHOS::MessageParcel parcel;
    ParcelMap map;
    if (!parcel.WriteBuffer(content.data, content.size) || !IpcUtils::UnMarshalling(parcel, map)) {
        return std::nullopt;
    }
    return map;
}
