// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "hisysevent.h"
#include "ostra_adapter_log.h"
#include "ostra_dump.h"
#include "ostra_radar.h"
#include "parameter.h"
#include "ratio_table.h"

namespace ostra::host {

// Replaces the platform's function: changes the line number after every hundred events and calls the original. A call
// site may send a hundred events before the rate limiter rejects more, and rejections must not be measured.
int WriteEvent(const EventCallSite &site, const std::string &domain, const std::string &eventName, int type,
               const EventKeyValue *params, size_t paramCount)
{
    static const auto platformWrite = [] {
        Dl_info self{};
        dladdr(reinterpret_cast<void *>(&WriteEvent), &self);
        return reinterpret_cast<decltype(&WriteEvent)>(dlsym(RTLD_NEXT, self.dli_sname));
    }();
    static int64_t count = 0;
    constexpr int64_t budget = 100;
    constexpr int64_t farFromOtherLines = 1000;
    EventCallSite numbered = site;
    numbered.line += count++ / budget * farFromOtherLines;
    return platformWrite(numbered, domain, eventName, type, params, paramCount);
}

}  // namespace ostra::host

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr size_t BLOCK = 4096;
constexpr char DUMP_NAME[] = "ostra_bench_dump";

// Measures `write(path, block)`, where `path` is that of a dump: a symbolic link to a file in memory, because the speed
// of a disk varies with its load.
template <typename Write>
void MeasureWrite(benchmark::State &state, Write write)
{
    constexpr char target[] = "/dev/shm/ostra_bench_dump";
    const std::string path = DUMP_PATH_PREFIX + DUMP_NAME;
    const std::vector<unsigned char> block(BLOCK, 7);
    if (symlink(target, path.c_str()) != 0) {
        state.SkipWithError("cannot create a symbolic link for the dump");
    }
    for (auto _ : state) {
        write(path, block);
    }
    if (std::remove(target) != 0) {
        state.SkipWithError("nothing was written");
    }
    std::remove(path.c_str());
}

void DumpBlock(benchmark::State &state)
{
    OstraDump &dump = OstraDump::GetInstance();
    SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "a");
    dump.Init();
    MeasureWrite(state, [&dump](const std::string & /* path */, const std::vector<unsigned char> &block) {
        dump.DumpStreamData(DUMP_NAME, block.data(), static_cast<int>(block.size()));
    });
    dump.UnInit();
}

void DumpBaseline(benchmark::State &state)
{
    MeasureWrite(state, [](const std::string &path, const std::vector<unsigned char> &block) {
        if (FILE *const file = std::fopen(path.c_str(), "ab+")) {
            benchmark::DoNotOptimize(std::fwrite(block.data(), 1, block.size(), file));
            std::fclose(file);
        }
    });
}

const int DUMP_ROW = AddRow("`DumpStreamData`, 4 KiB, mode \"a\"", DumpBlock, "`fopen` + `fwrite` + `fclose`",
                            DumpBaseline, SAME_WORK_LIMIT);

void DumpWhileOff(benchmark::State &state)
{
    const unsigned char block[BLOCK] = {7};
    OstraDump &dump = OstraDump::GetInstance();
    const std::string name = DUMP_NAME;
    for (auto _ : state) {
        dump.DumpStreamData(name, block, BLOCK);
    }
}

void DumpWhileOffBaseline(benchmark::State &state)
{
    for (auto _ : state) {
        DHLog(DH_LOG_DEBUG, "[ostraadapterutils][DumpStreamData]:Dump is not enable.");
    }
}

const int OFF_ROW =
    AddRow("`DumpStreamData` while off", DumpWhileOff, "one `DHLog`", DumpWhileOffBaseline, SAME_WORK_LIMIT);

void ReportThroughRadar(benchmark::State &state)
{
    OstraRadar &radar = OstraRadar::GetInstance();
    radar.SetCurBusinessId(2);
    const std::string function = "OpenMicrophone";
    for (auto _ : state) {
        benchmark::DoNotOptimize(radar.AudioOpenRes(function, 0));
    }
}

void ReportBaseline(benchmark::State &state)
{
    const std::string function = "OpenMicrophone";
    const std::string host = "collaboration_service";
    for (auto _ : state) {
        benchmark::DoNotOptimize(HiviewDFX::HiSysEvent::Write(
            "AudioOpenRes", 600, OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT, HiviewDFX::HiSysEvent::BEHAVIOR, "ORG_PKG",
            ORG_PKG_NAME, "FUNC", function, "HOST_PKG", host, "BIZ_SCENE", 2, "BIZ_STAGE", 6, "STAGE_RES", 1));
    }
}

const int EVENT_ROW = AddRow("one event through `OstraRadar`", ReportThroughRadar, "the same `HiSysEvent::Write`",
                             ReportBaseline, SAME_WORK_LIMIT);

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
