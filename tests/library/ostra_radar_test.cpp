// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include <map>
#include <regex>

#include "hisysevent.h"
#include "ostra_radar_adapter.h"
#include "support/event_listener.h"
#include "support/golden_test.h"

const char *const GOLDEN_FILE =
#include "ostra_radar_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Records an event without the fields of the platform that change from run to run.
void RecordEvent(const EventListener::Event &event)
{
    static const std::regex changing("\"(time|tz|pid|tid|uid)_\":[^,]*,");
    GoldenTest::Record(std::regex_replace(event->AsJson(), changing, ""));
}

class OstraRadarTest : public GoldenTest {
protected:
    // Writes other events, so that the platform's rate limiter forgets those of the library that it counted.
    void SetUp() override
    {
        static const bool isListening = [] {
            const auto listener = std::make_shared<EventListener>();
            listener->act = RecordEvent;
            std::vector<HiviewDFX::ListenerRule> all = {{"", ""}};
            return HiviewDFX::HiSysEventManager::AddListener(listener, all) == 0;
        }();
        ASSERT_TRUE(isListening);
        for (int line = 0; line < 30; ++line) {
            HiviewDFX::HiSysEvent::Write("elsewhere", line, "OTHER", "OTHER", HiviewDFX::HiSysEvent::BEHAVIOR);
        }
        GoldenTest::SetUp();
    }

    void TearDown() override
    {
        radar_.SetProcessName("");
        radar_.SetCurBusinessId(-1);
        GoldenTest::TearDown();
    }

    void ReportAll(const std::string &function, int error, bool isAccepted)
    {
        EXPECT_EQ(CALL(radar_.ServiceStartRes(function, 7, "ignored", error)), isAccepted);
        EXPECT_EQ(CALL(radar_.ConnectDeviceRes(function, error, "P")), isAccepted);
        EXPECT_EQ(CALL(radar_.UpdateRes(function, error, "P")), isAccepted);
        EXPECT_EQ(CALL(radar_.UpdatePortRes(function, error)), isAccepted);
        EXPECT_EQ(CALL(radar_.EnableVirtualRes(function, error)), isAccepted);
        EXPECT_EQ(CALL(radar_.AudioOpenRes(function, error)), isAccepted);
        EXPECT_EQ(CALL(radar_.AudioCloseRes(function, error)), isAccepted);
        EXPECT_EQ(CALL(radar_.DisconnectDeviceRes(function, error, "P")), isAccepted);
        EXPECT_EQ(CALL(radar_.ServiceStopRes(function, error)), isAccepted);
        EXPECT_EQ(CALL(radar_.LoadSinkServiceRes(function, error)), isAccepted);
        EXPECT_EQ(CALL(radar_.UnLoadSinkServiceRes(function, error)), isAccepted);
    }

    OstraRadar &radar_ = OstraRadar::GetInstance();
};

TEST_F(OstraRadarTest, ReportsEachStepWithItsKeysInOrder)
{
    radar_.SetCurBusinessId(2);
    ReportAll("F", 0, true);
    EXPECT_TRUE(CALL(radar_.ServiceStopRes("F", -3)));
    EXPECT_TRUE(CALL(radar_.ConnectDeviceRes("Connect", -3, "dsoftbus")));
    EXPECT_TRUE(CALL(radar_.ConnectDeviceRes(std::string("a\0b", 3), 0, std::string("p\0q", 3))));
    CALL(RadarWrite("F", 1, "P"));
    CALL(::UpdateRes("F", INT32_MIN, "P"));
    radar_.SetCurBusinessId(-1);
    EXPECT_TRUE(CALL(radar_.ServiceStartRes("OnStart", 7, "ignored", 0)));
}

// Each operation is counted separately, and so are its failures: no number of successes suppresses one.
TEST_F(OstraRadarTest, LogsRefusedEvents)
{
    Unrecorded([this] {
        for (int i = 0; i < 100; ++i) {
            ReportAll("F", 0, true);
        }
    });
    ReportAll("F", 0, false);
    EXPECT_TRUE(CALL(radar_.AudioOpenRes("F", -1)));
    EXPECT_FALSE(CALL(radar_.AudioOpenRes(std::string(262145, 'x'), -1)));  // sent, with a warning
}

TEST_F(OstraRadarTest, NamesTheHostOfTheBusinessUntilTheProcessNameIsSet)
{
    const std::map<int, std::string> hosts = {{1, "car_distributed_engine"},
                                              {2, "collaboration_service"},
                                              {3, "collaboration_service"},
                                              {10, "CollaborationFwk"}};
    for (int businessId = -1; businessId <= 11; ++businessId) {
        radar_.SetCurBusinessId(businessId);
        EXPECT_EQ(radar_.GetProcessName(), hosts.count(businessId) == 1 ? hosts.at(businessId) : "") << businessId;
    }
    radar_.SetProcessName("N");
    radar_.SetCurBusinessId(1);
    EXPECT_EQ(radar_.GetProcessName(), "N");
    EXPECT_TRUE(CALL(radar_.AudioOpenRes("F", 0)));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
