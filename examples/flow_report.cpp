// SPDX-License-Identifier: Apache-2.0

#include "flow_report.h"

#include <utility>
#include <vector>

#include "hisysevent_manager.h"
#include "ostra_radar.h"

using OHOS::DistributedHardware::OstraAdapter::ADAPTER_BEHAVIOR_EVENT;
using OHOS::DistributedHardware::OstraAdapter::OSTRA_DOMAIN;
using OHOS::DistributedHardware::OstraAdapter::OstraRadar;
using OHOS::DistributedHardware::OstraAdapter::SOFTBUS_PKG_NAME;
using OHOS::HiviewDFX::HiSysEventListener;
using OHOS::HiviewDFX::HiSysEventManager;
using OHOS::HiviewDFX::HiSysEventRecord;
using OHOS::HiviewDFX::ListenerRule;

namespace {

constexpr int COLLABORATION_BUSINESS = 2;

}  // namespace

// The event's keys and values, in their order.
class FlowReport::Listener : public HiSysEventListener {
public:
    void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) override
    {
        std::vector<std::string> names;
        sysEvent->GetParamNames(names);
        std::string row;
        for (const std::string &name : names) {
            std::string text;
            int64_t number = 0;
            if (sysEvent->GetParamValue(name, text) != 0 && sysEvent->GetParamValue(name, number) == 0) {
                text = std::to_string(number);
            }
            row.append(row.empty() ? "" : " ").append(name).append("=").append(text);
        }
        rows_.push_back(row);
    }

    void OnServiceDied() override
    {
    }

    const std::vector<std::string> &Rows() const
    {
        return rows_;
    }

private:
    std::vector<std::string> rows_;
};

FlowReport::FlowReport(std::string side) : side_(std::move(side)), listener_(std::make_shared<Listener>())
{
    std::vector<ListenerRule> rules = {ListenerRule(OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT)};
    HiSysEventManager::AddListener(listener_, rules);
    OstraRadar::GetInstance().SetCurBusinessId(COLLABORATION_BUSINESS);
    OstraRadar::GetInstance().ServiceStartRes(side_, COLLABORATION_BUSINESS, "", 0);
}

FlowReport::~FlowReport()
{
    HiSysEventManager::RemoveListener(listener_);
}

void FlowReport::Connected(int errorCode)
{
    OstraRadar::GetInstance().ConnectDeviceRes(side_, errorCode, SOFTBUS_PKG_NAME);
}

void FlowReport::AudioOpened(int errorCode)
{
    OstraRadar::GetInstance().AudioOpenRes(side_, errorCode);
}

void FlowReport::AudioClosed(int errorCode)
{
    OstraRadar::GetInstance().AudioCloseRes(side_, errorCode);
}

void FlowReport::Ended(int errorCode)
{
    OstraRadar::GetInstance().DisconnectDeviceRes(side_, errorCode, SOFTBUS_PKG_NAME);
    OstraRadar::GetInstance().ServiceStopRes(side_, errorCode);
}

void FlowReport::AddRows(Summary &summary) const
{
    for (const std::string &row : listener_->Rows()) {
        summary.Row("event", row);
    }
}
