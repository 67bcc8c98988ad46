// SPDX-License-Identifier: Apache-2.0

#include <utility>

#include "dh_device_json.h"
#include "members.h"

using OHOS::DistributedHardware::OstraAdapter::DHOSTRADeviceServiceJson;

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
    Report warnings("warnings", Report::Shape::LIST);
    const auto [root, flaw] = ParseDocument(text, warnings);
    Conclude(finding, "service document", service.Unmarshal(text), flaw);
    if (!finding.refusal.empty()) {
        return finding;
    }
    Report ignored("ignored", Report::Shape::LIST);
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
