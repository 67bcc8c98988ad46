// SPDX-License-Identifier: Apache-2.0

#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

#include "dh_device_json.h"
#include "input.h"
#include "members.h"

using OHOS::DistributedHardware::OstraAdapter::DHOSTRADeviceJson;

namespace {

const MemberRules MEMBERS = {
    {"deviceId", MemberKind::TEXT},     {"deviceName", MemberKind::TEXT},     {"deviceType", MemberKind::NUMBER},
    {"bluetoothMac", MemberKind::TEXT}, {"btName", MemberKind::TEXT},         {"localIp", MemberKind::TEXT},
    {"remoteIp", MemberKind::TEXT},     {"port", MemberKind::NUMBER},         {"businessId", MemberKind::NUMBER},
    {"supportMic", MemberKind::TRUTH},  {"supportCamera", MemberKind::TRUTH}, {"tavoniTv", MemberKind::TRUTH},
    {"properties", MemberKind::OBJECT},
};
const MemberRule VERSIONS = {"2016", MemberKind::TEXT};

Report::Value ValueOf(const cJSON *item)
{
    if (item == nullptr) {
        return {};
    }
    if (cJSON_IsString(item) != 0) {
        return std::string(item->valuestring);
    }
    if (cJSON_IsBool(item) != 0) {
        return cJSON_IsTrue(item) != 0;
    }
    constexpr double mostExact = 9007199254740992.0;  // 2^53
    const bool isInteger =
        std::fabs(item->valuedouble) <= mostExact && std::trunc(item->valuedouble) == item->valuedouble;
    return isInteger ? Report::Value(static_cast<int64_t>(item->valuedouble)) : Report::Value(item->valuedouble);
}

Report VersionReport(const cJSON *entry)
{
    Report report;
    report.Add("serviceType", std::string(entry->string));
    report.Add("version", ValueOf(entry));
    const int type = std::atoi(entry->string);
    const int32_t own = DHOSTRADeviceJson().GetVersionByService(type);
    report.Add("own_version", own);
    const std::string difference = entry->valueint == own ? "" : " (this library has " + std::to_string(own) + ")";
    report.shown =
        "service type " + std::string(entry->string) + ": version " + std::to_string(entry->valueint) + difference;
    return report;
}

Report VersionTable(const cJSON *properties, Report &warnings)
{
    Report table("versions", Report::Shape::LIST);
    const cJSON *const text = TakenMember(properties, VERSIONS);
    if (text == nullptr) {
        warnings.Add("", "there is no version table: properties has no text 2016");
        return table;
    }
    const auto [versions, flaw] = ParseDocument(text->valuestring, warnings);
    if (versions == nullptr) {
        warnings.Add("", "the version table is not read, since " + flaw + ": " + text->valuestring);
        return table;
    }
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, versions.get())
    {
        if (entry->string != nullptr && cJSON_IsNumber(entry) != 0) {
            table.Add(VersionReport(entry));
        }
    }
    return table;
}

template <typename Number>
Number NumberIn(const cJSON *root, const char *name, Number otherwise)
{
    const cJSON *const item = TakenMember(root, {name, MemberKind::NUMBER});
    const bool fits = item != nullptr && item->valuedouble >= static_cast<double>(std::numeric_limits<Number>::min()) &&
                      item->valuedouble <= static_cast<double>(std::numeric_limits<Number>::max());
    return fits ? static_cast<Number>(item->valuedouble) : otherwise;
}

// What the library writes for a device with these members.
std::string Written(const cJSON *root)
{
    const auto textIn = [root](const char *name) {
        const cJSON *const item = TakenMember(root, {name, MemberKind::TEXT});
        return std::string(item == nullptr ? "" : item->valuestring);
    };
    const auto truthIn = [root](const char *name) {
        return cJSON_IsTrue(cJSON_GetObjectItem(root, name)) != 0;
    };
    DHOSTRADeviceJson device;
    device.deviceId_ = textIn("deviceId");
    device.deviceName_ = textIn("deviceName");
    device.deviceType_ = NumberIn<uint32_t>(root, "deviceType", 0);
    device.bluetoothMac_ = textIn("bluetoothMac");
    device.btName_ = textIn("btName");
    device.localIp_ = textIn("localIp");
    device.remoteIp_ = textIn("remoteIp");
    device.port_ = NumberIn<int32_t>(root, "port", -1);
    device.businessId_ = NumberIn<uint32_t>(root, "businessId", 0);
    device.supportMic_ = truthIn("supportMic");
    device.supportCamera_ = truthIn("supportCamera");
    device.tavoniTv_ = truthIn("tavoniTv");
    std::string document;
    device.Marshal(document);
    return document;
}

}  // namespace

Finding InspectDevice(const std::string &text)
{
    Report warnings("warnings", Report::Shape::LIST);
    const auto [root, flaw] = ParseDocument(text, warnings);
    if (root == nullptr) {
        throw InputError("no device document: " + flaw);
    }
    if (cJSON_IsObject(root.get()) == 0) {
        throw InputError("no device document: it is " + KindOf(root.get()) + ", not an object");
    }
    Finding finding;
    Report members("members");
    for (const MemberRule &rule : MEMBERS) {
        const cJSON *const item = TakenMember(root.get(), rule);
        if (item == nullptr || rule.kind != MemberKind::OBJECT) {
            members.Add(rule.name, ValueOf(item), item == nullptr ? "missing" : "");
        }
    }
    Report ignored("ignored", Report::Shape::LIST);
    AddIgnored(ignored, root.get(), MEMBERS);
    const cJSON *const properties = TakenMember(root.get(), MEMBERS.back());
    AddIgnored(ignored, properties, {VERSIONS}, "properties.");
    Report versions = VersionTable(properties, warnings);
    const std::string document = Written(root.get());
    const bool isAsWritten = text.rfind(document, 0) == 0 && text.size() - document.size() <= 1;  // a last line end
    finding.report.Add(std::move(members));
    finding.report.Add(std::move(versions));
    finding.report.Add("as_written", isAsWritten, isAsWritten ? "yes, byte for byte as this library writes it" : "no");
    finding.report.Add(std::move(ignored));
    finding.report.Add(std::move(warnings));
    finding.log = TakeLog();
    return finding;
}
