// SPDX-License-Identifier: Apache-2.0
//
// Failures that would stay unseen were they not reported: a dump that the disk does not take, a document that cannot be
// parsed or printed, an event behind a hundred others.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "cJSON.h"
#include "dh_device_json.h"
#include "ostra_dump.h"
#include "ostra_radar.h"
#include "parameter.h"
#include "support/json_fault.h"
#include "support/log_recorder.h"

namespace {

const char *g_printed = nullptr;  // what printing an object gives, where it is not null

}  // namespace

// In place of cJSON's own.
char *cJSON_Print(const cJSON *item)
{
    return item != nullptr && g_printed != nullptr ? strdup(g_printed) : cJSON_PrintUnformatted(item);
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

TEST(ReportedFailures, ADumpThatTheDiskDoesNotTakeIsLoggedOnce)
{
    const std::string name = "full_" + std::to_string(getpid());
    const std::string path = "/data/local/tmp/" + name;
    ASSERT_EQ(symlink("/dev/full", path.c_str()), 0);
    OstraDump &dump = OstraDump::GetInstance();
    for (const char *mode : {"w", "a"}) {
        ASSERT_EQ(SetParameter("sys.ostra.audio.dump.write.enable", mode), 0);
        dump.Init();
        for (int size : {0, 1, 100000}) {
            const std::vector<unsigned char> bytes(100000);
            LogRecorder log;
            dump.DumpStreamData(name, bytes.data(), size);
            const LogLines lines = log.Take();
            const LogLines failed = {ErrorLine("DumpStreamData", "Failed to write the file")};
            EXPECT_EQ(lines, size == 0 ? LogLines() : failed) << mode << " " << size;
        }
    }
    dump.UnInit();
    SetParameter("sys.ostra.audio.dump.write.enable", "-1");
    unlink(path.c_str());
}

// A text that does not parse stands there as a text; memory that runs out does not pass for one.
TEST(ReportedFailures, PropertiesThatDoNotParseAreToldFromMemoryThatRunsOut)
{
    DHOSTRADeviceJson device;
    for (const char *text : {"{", "no JSON", "{\"2016\":\"}"}) {
        g_printed = text;
        std::string out;
        LogRecorder log;
        EXPECT_EQ(device.Marshal(out), 0);
        EXPECT_EQ(log.Take(), (LogLines{ErrorLine("Marshal", "cJSON_Parse failed")})) << text;
    }
    g_printed = R"({"2016":"{}"})";
    for (int failing = 0;; ++failing) {
        std::string out = "old";
        const JsonFault fault;
        Fault::Arm(failing);
        const int32_t ret = device.Marshal(out);
        if (!Fault::Disarm()) {
            EXPECT_EQ(ret, 0);
            break;
        }
        EXPECT_TRUE(ret == -70001 || ret == -70004) << ret << " at allocation " << failing;
        EXPECT_EQ(out, "old");
    }
    g_printed = nullptr;
}

TEST(ReportedFailures, SuccessesHideNoFailure)
{
    OstraRadar &radar = OstraRadar::GetInstance();
    int written = 0;
    while (written < 1000 && radar.AudioOpenRes("function", 0)) {
        ++written;
    }
    EXPECT_LT(written, 1000);
    EXPECT_TRUE(radar.AudioOpenRes("function", -1));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
