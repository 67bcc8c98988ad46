// SPDX-License-Identifier: Apache-2.0

#include <map>

#include "inspect.h"
#include "ipc_utils.h"
#include "message_parcel.h"

using OHOS::MessageParcel;
using OHOS::DistributedHardware::OstraAdapter::IpcUtils;
using IntegerMap = std::map<int32_t, std::string>;

namespace {

// Adds what the library reads from a parcel with this entry alone.
void AddEntry(List &entries, const std::string &entry)
{
    MessageParcel parcel;
    IntegerMap map;
    parcel.SetMaxCapacity(entry.size() + parcel.GetMaxCapacity());
    if (!parcel.WriteUint32(1) || !parcel.WriteString(entry)) {
        throw InputError("out of memory");
    }
    IpcUtils::UnMarshalling(parcel, map);
    const std::string messages = TakeLogMessages();
    cJSON *const row = entries.AddObject();
    if (map.empty()) {
        AddString(row, "entry", entry);
        AddString(row, "skipped", messages);
        return;
    }
    AddNumber(row, "key", map.begin()->first);
    AddString(row, "value", map.begin()->second);
}

}  // namespace

Inspection InspectParcel(const std::string &bytes)
{
    Inspection inspection;
    IntegerMap map;
    MessageParcel parcel;
    parcel.SetMaxCapacity(bytes.size() + parcel.GetMaxCapacity());
    if (!bytes.empty() && !parcel.WriteBuffer(bytes.data(), bytes.size())) {
        throw InputError("out of memory");
    }
    parcel.SetDataSize(bytes.size());  // without the padding
    const bool isRead = IpcUtils::UnMarshalling(parcel, map);
    const std::string messages = TakeLogMessages();

    const size_t end = parcel.GetReadPosition();
    parcel.RewindRead(0);
    const uint32_t count = parcel.ReadUint32();
    cJSON *const report = inspection.report.get();
    AddNumber(report, "bytes", static_cast<int64_t>(bytes.size()));
    AddNumber(report, "count", count);
    AddNumber(report, "accepted", static_cast<int64_t>(map.size()));
    size_t read = 0;
    List entries(report, "entries");
    std::string entry;
    for (; read < count && parcel.GetReadPosition() < end && parcel.ReadString(entry); ++read) {
        AddEntry(entries, entry);
    }
    if (!isRead) {
        inspection.error =
            "rejected after " + std::to_string(read) + " of " + std::to_string(count) + " entries: " + messages;
        return inspection;
    }
    List warnings(report, "warnings");
    if (bytes.size() < sizeof(count)) {
        warnings.Add("truncated: an input shorter than the 4-byte count is read as an empty map");
    } else if (parcel.GetReadableBytes() > 0) {
        warnings.Add("trailing bytes after the map: " + std::to_string(parcel.GetReadableBytes()));
    }
    return inspection;
}
