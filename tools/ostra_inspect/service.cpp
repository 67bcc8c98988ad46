// SPDX-License-Identifier: Apache-2.0

#include <utility>

#include "dh_device_json.h"
#include "members.h"
#include "ostra_constants.h"
#include "subjects.h"

using OHOS::DistributedHardware::OstraAdapter::DHOSTRADeviceServiceJson;
using OHOS::DistributedHardware::OstraAdapter::OSTRA_JSON_SUCCESS;

namespace {

const MemberRule PROPERTIES = {"properties", MemberKind::OBJECT};

// The members with what the reader holds for each.
struct HeldMember {
    MemberRule rule;
    Report::Value value;
};
using HeldMembers = std::vector<HeldMember>;

HeldMembers MembersOf(const DHOSTRADeviceServiceJson &service)
{
    return {
        {{"deviceId", MemberKind::TEXT}, service.deviceId_},
        {{"deviceName", MemberKind::TEXT}, service.deviceName_},
        {{"serviceType", MemberKind::NUMBER}, service.serviceType_},
        {{"serviceId", MemberKind::TEXT}, service.serviceId_},
        {PROPERTIES, service.properties_},
        {{"status", MemberKind::OBJECT}, service.status_},
    };
}

}  // namespace

Finding InspectService(const std::string &text)
{
    Finding finding;
    DHOSTRADeviceServiceJson service;
    const int32_t result = service.Unmarshal(text);
    finding.log = TakeLog();
    finding.report.Add("result", result);
    if (result != OSTRA_JSON_SUCCESS) {
        finding.refusal =
            "no service document (" + std::to_string(result) + "): " + Reasons(finding.log, "not enough memory");
        return finding;
    }
    Report warnings("warnings", Report::Shape::LIST);
    Report ignored("ignored", Report::Shape::LIST);
    const JsonTree root = ParseDocument(text, warnings);
    Report members("members");
    MemberRules rules;
    for (const HeldMember &member : MembersOf(service)) {
        const cJSON *const item = TakenMember(root.get(), member.rule);
        members.Add(member.rule.name, item == nullptr ? Report::Value() : member.value,
                    item == nullptr ? "not set" : "");
        AddNumberWarning(warnings, item, member.rule.name);
        rules.push_back(member.rule);
    }
    AddIgnored(ignored, root.get(), rules);
    finding.report.Add(std::move(members));
    finding.report.Add(std::move(ignored));
    finding.report.Add(std::move(warnings));

    if (TakenMember(root.get(), PROPERTIES) != nullptr) {
        Finding audio = InspectAudio(service.properties_);
        audio.report.key = "audio";
        if (!audio.refusal.empty()) {
            audio.report.Add("refused", audio.refusal);
        }
        finding.report.Add(std::move(audio.report));
        finding.log.insert(finding.log.end(), audio.log.begin(), audio.log.end());
    }
    return finding;
}
