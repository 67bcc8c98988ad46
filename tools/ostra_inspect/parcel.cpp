// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "input.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "subjects.h"

using OHOS::MessageParcel;
using OHOS::DistributedHardware::OstraAdapter::IpcUtils;
using IntegerMap = std::map<int32_t, std::string>;

namespace {

// Lets the parcel read the bytes as they are, however many.
void Fill(MessageParcel &parcel, const std::string &bytes)
{
    if (bytes.empty()) {
        return;
    }
    auto *const block = static_cast<char *>(std::malloc(bytes.size()));
    if (block == nullptr) {
        throw InputError(std::strerror(ENOMEM));
    }
    std::copy(bytes.begin(), bytes.end(), block);
    parcel.ParseFrom(reinterpret_cast<uintptr_t>(block), bytes.size());
}

void AddText(Report &report, const std::string &name, const std::string &text)
{
    report.Add(name, text);
    if (!IsWhole(text)) {
        report.Add(name + "_bytes", ToHex(text));
    }
}

// Reads the text as the only entry of a map, which tells what the reader makes of it.
Report EntryReport(const std::string &text)
{
    MessageParcel parcel;
    IntegerMap map;
    Report entry;
    parcel.SetMaxCapacity(text.size() + parcel.GetMaxCapacity());
    const bool isRead = parcel.WriteUint32(1) && parcel.WriteString(text) && IpcUtils::UnMarshalling(parcel, map);
    const std::vector<LogLine> log = TakeLog();
    if (isRead && !map.empty()) {
        entry.Add("key", map.begin()->first);
        AddText(entry, "value", map.begin()->second);
        entry.shown = std::to_string(map.begin()->first) + " = " + map.begin()->second;
        return entry;
    }
    const std::string reason = Reasons(log, "refused");
    AddText(entry, "text", text);
    entry.Add("skipped", reason);
    entry.shown = "skipped: \"" + text + "\" (" + reason + ")";
    return entry;
}

}  // namespace

Finding InspectParcel(const std::string &bytes)
{
    Finding finding;
    IntegerMap map;
    MessageParcel parcel;
    Fill(parcel, bytes);
    const bool isRead = IpcUtils::UnMarshalling(parcel, map);
    finding.log = TakeLog();

    MessageParcel again;
    Fill(again, bytes);
    Report entries("entries", Report::Shape::LIST);
    const uint32_t count = again.ReadUint32();
    std::string text;
    while (entries.members.size() < count && again.GetReadPosition() < parcel.GetReadPosition() &&
           again.ReadString(text)) {
        entries.Add(EntryReport(text));
    }
    Report &report = finding.report;
    report.Add("bytes", static_cast<int64_t>(bytes.size()));
    report.Add("count", count);
    report.Add("accepted", static_cast<int64_t>(map.size()));
    const size_t read = entries.members.size();
    report.Add(std::move(entries));
    if (!isRead) {
        finding.refusal = "refused after " + std::to_string(read) + " of " + std::to_string(count) +
                          " entries: " + Reasons(finding.log, "unreadable");
        return finding;
    }
    Report warnings("warnings", Report::Shape::LIST);
    if (bytes.size() < sizeof(count)) {
        warnings.Add("", "less than the 4 bytes of a count are an empty map");
    } else if (parcel.GetReadableBytes() > 0) {
        warnings.Add("", std::to_string(parcel.GetReadableBytes()) + " bytes follow the map");
    }
    report.Add(std::move(warnings));
    return finding;
}
