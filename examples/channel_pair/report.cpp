// SPDX-License-Identifier: Apache-2.0

#include "report.h"

#include <cstdio>
#include <utility>

#include "hisysevent_manager.h"
#include "ostra_radar.h"

using namespace OHOS::HiviewDFX;
using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr int COLLABORATION = 2;  // business id

int32_t ErrorCode(bool isSuccess)
{
    return isSuccess ? 0 : -1;
}

}  // namespace

std::string Row(const std::string &name, const std::string &value)
{
    constexpr size_t nameWidth = 12;
    std::string row = "  " + name;
    row.resize(2 + nameWidth, ' ');
    return row + value + "\n";
}

std::string FormatSeconds(double seconds)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%g s", seconds);
    return buffer;
}

std::string TotalRows(const Totals &totals, std::chrono::steady_clock::time_point start)
{
    const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - start;
    char throughput[32];
    std::snprintf(throughput, sizeof(throughput), "%.1f MB/s", static_cast<double>(totals.bytes) / elapsed.count());
    return Row("chunks", std::to_string(totals.chunks)) + Row("bytes", std::to_string(totals.bytes)) +
           Row("throughput", throughput);
}

struct BusinessFlow::Listener : HiSysEventListener {
    void OnEvent(std::shared_ptr<HiSysEventRecord> event) override
    {
        constexpr int64_t stageFailed = 2;
        int64_t result = 0;
        event->GetParamValue("STAGE_RES", result);
        ++count;
        failures += result == stageFailed ? 1 : 0;
        rows += Row("event", event->AsJson());
    }

    void OnServiceDied() override
    {
    }

    uint64_t count = 0;
    uint64_t failures = 0;
    std::string rows;
};

BusinessFlow::BusinessFlow(std::string side) : side_(std::move(side)), listener_(std::make_shared<Listener>())
{
    std::vector<ListenerRule> rules = {ListenerRule(OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT)};
    HiSysEventManager::AddListener(listener_, rules);
    OstraRadar::GetInstance().SetCurBusinessId(COLLABORATION);
    OstraRadar::GetInstance().ServiceStartRes(side_, COLLABORATION, "", 0);
}

void BusinessFlow::ReportStart(bool isSuccess)
{
    OstraRadar::GetInstance().ConnectDeviceRes(side_, ErrorCode(isSuccess), SOFTBUS_PKG_NAME);
    OstraRadar::GetInstance().AudioOpenRes(side_, ErrorCode(isSuccess));
}

void BusinessFlow::ReportEnd(bool isSuccess)
{
    OstraRadar::GetInstance().AudioCloseRes(side_, ErrorCode(isSuccess));
    OstraRadar::GetInstance().DisconnectDeviceRes(side_, ErrorCode(isSuccess), SOFTBUS_PKG_NAME);
    OstraRadar::GetInstance().ServiceStopRes(side_, ErrorCode(isSuccess));
}

std::string BusinessFlow::Rows(bool isVerbose) const
{
    const uint64_t failures = listener_->failures;
    return Row("events", std::to_string(listener_->count) + " business-flow stages reported, " +
                             (failures == 0 ? "none" : std::to_string(failures)) + " failed") +
           (isVerbose ? listener_->rows : "");
}
