// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include "hisysevent.h"
#include "ostra_radar_adapter.h"
#include "support/event_listener.h"
#include "support/golden_test.h"

#include "ostra_radar_test.txt"

using namespace OHOS::HiviewDFX;
using namespace OHOS::DistributedHardware::OstraAdapter;

// Records an event without the fields that the platform adds, which differ from run to run.
void RecordEvent(const EventListener::Event &event)
{
    std::string json = event->AsJson();
    const size_t begin = json.find("\"time_\"");
    GoldenTest::RecordEffect(json.erase(begin, json.find("\"ORG_PKG\":\"" + ORG_PKG_NAME) - begin));
}

class OstraRadarTest : public GoldenTest {
protected:
    // Writes other events, so that the platform's rate limiter discards its counts of the library's events.
    void SetUp() override
    {
        static const auto listener = std::make_shared<EventListener>();
        listener->act = RecordEvent;
        std::vector<ListenerRule> rules = {{OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT}};
        HiSysEventManager::AddListener(listener, rules);  // fails from the second test on
        for (int line = 0; line < 30; ++line) {
            HiSysEvent::Write("elsewhere", line, "OTHER", "OTHER", HiSysEvent::BEHAVIOR);
        }
        radar_.SetProcessName("");
        radar_.SetCurBusinessId(-1);
        GoldenTest::SetUp();
    }

    // Reports each stage as successful.
    void ReportAll(bool isAccepted)
    {
        EXPECT_EQ(radar_.ServiceStartRes("F", 7, "ignored", 0), isAccepted);
        EXPECT_EQ(radar_.ConnectDeviceRes("F", 0, "P"), isAccepted);
        EXPECT_EQ(radar_.UpdateRes("F", 0, "P"), isAccepted);
        EXPECT_EQ(radar_.UpdatePortRes("F", 0), isAccepted);
        EXPECT_EQ(radar_.EnableVirtualRes("F", 0), isAccepted);
        EXPECT_EQ(radar_.AudioOpenRes("F", 0), isAccepted);
        EXPECT_EQ(radar_.AudioCloseRes("F", 0), isAccepted);
        EXPECT_EQ(radar_.DisconnectDeviceRes("F", 0, "P"), isAccepted);
        EXPECT_EQ(radar_.ServiceStopRes("F", 0), isAccepted);
        EXPECT_EQ(radar_.LoadSinkServiceRes("F", 0), isAccepted);
        EXPECT_EQ(radar_.UnLoadSinkServiceRes("F", 0), isAccepted);
    }

    OstraRadar &radar_ = OstraRadar::GetInstance();
};

TEST_F(OstraRadarTest, ReportsEachStageWithItsKeysInOrder)
{
    radar_.SetCurBusinessId(2);
    CALL(ReportAll(true));
    EXPECT_TRUE(CALL(radar_.ServiceStopRes("F", -3)));
    EXPECT_TRUE(CALL(radar_.ConnectDeviceRes("Connect", -3, "dsoftbus")));
    EXPECT_TRUE(CALL(radar_.ConnectDeviceRes(std::string("a\0b", 3), 0, std::string("p\0q", 3))));
    CALL(RadarWrite("F", 1, "P"));
    CALL(::UpdateRes("F", INT32_MIN, "P"));
    radar_.SetCurBusinessId(-1);
    EXPECT_TRUE(CALL(radar_.ServiceStartRes("OnStart", 7, "ignored", 0)));
}

// The rate limiter counts operations separately, and failures separately from successes, which never suppress them.
TEST_F(OstraRadarTest, LogsRejectedEvents)
{
    for (int i = 0; i < 100; ++i) {
        ReportAll(true);
    }
    CALL(ReportAll(false));
    EXPECT_TRUE(CALL(radar_.AudioOpenRes("F", -1)));
    EXPECT_FALSE(CALL(radar_.AudioOpenRes(std::string(262145, 'x'), -1)));  // written, with a warning
}

TEST_F(OstraRadarTest, ProcessNameOverridesHostOfBusinessId)
{
    for (int businessId = -1; businessId <= 11; ++businessId) {
        radar_.SetCurBusinessId(businessId);
        RecordLine(std::to_string(businessId) + ": " + radar_.GetProcessName());
    }
    radar_.SetProcessName("N");
    radar_.SetCurBusinessId(1);
    EXPECT_EQ(radar_.GetProcessName(), "N");
    EXPECT_TRUE(CALL(radar_.AudioOpenRes("F", 0)));
}
