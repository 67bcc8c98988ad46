// SPDX-License-Identifier: Apache-2.0

#include <map>

#include "inspect.h"
#include "ipc_utils.h"
#include "message_parcel.h"

using OHOS::MessageParcel;
using OHOS::DistributedHardware::OstraAdapter::IpcUtils;
using IntegerMap = std::map<int32_t, std::string>;

namespace {

// Adds what the library reads from a map whose only entry is this string.
void AddEntry(List &entries, const std::string &text)
{
    MessageParcel parcel;
    IntegerMap map;
    parcel.SetMaxCapacity(text.size() + parcel.GetMaxCapacity());
    if (!parcel.WriteUint32(1) || !parcel.WriteString(text)) {
        throw InputError("out of memory");
    }
    IpcUtils::UnMarshalling(parcel, map);
    const std::string reasons = TakeReasons();
    cJSON *const entry = entries.AddObject();
    if (map.empty()) {
        AddString(entry, "text", text);
        AddString(entry, "skipped", reasons);
        return;
    }
    AddNumber(entry, "key", map.begin()->first);
    AddString(entry, "value", map.begin()->second);
}

}  // namespace

Finding InspectParcel(const std::string &bytes)
{
    Finding finding;
    IntegerMap map;
    MessageParcel parcel;
    parcel.SetMaxCapacity(bytes.size() + parcel.GetMaxCapacity());
    if (!bytes.empty() && !parcel.WriteBuffer(bytes.data(), bytes.size())) {
        throw InputError("out of memory");
    }
    parcel.SetDataSize(bytes.size());  // without the padding
    const bool isRead = IpcUtils::UnMarshalling(parcel, map);
    const std::string reasons = TakeReasons();

    const size_t end = parcel.GetReadPosition();
    parcel.RewindRead(0);
    const uint32_t count = parcel.ReadUint32();
    cJSON *const report = finding.report.get();
    AddNumber(report, "bytes", static_cast<int64_t>(bytes.size()));
    AddNumber(report, "count", count);
    AddNumber(report, "accepted", static_cast<int64_t>(map.size()));
    size_t read = 0;
    List entries(report, "entries");
    std::string text;
    for (; read < count && parcel.GetReadPosition() < end && parcel.ReadString(text); ++read) {
        AddEntry(entries, text);
    }
    if (!isRead) {
        finding.error =
            "rejected after " + std::to_string(read) + " of " + std::to_string(count) + " entries: " + reasons;
        return finding;
    }
    List warnings(report, "warnings");
    if (bytes.size() < sizeof(count)) {
        warnings.Add("truncated: less than the 4 bytes of a count is read as an empty map");
    } else if (parcel.GetReadableBytes() > 0) {
        warnings.Add(std::to_string(parcel.GetReadableBytes()) + " bytes follow the map");
    }
    return finding;
}
