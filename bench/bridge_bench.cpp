// SPDX-License-Identifier: Apache-2.0

#include <cJSON.h>

#include <charconv>
#include <string>
#include <vector>

#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "ostra_context.h"
#include "ratio_table.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int SMALL_COUNT = 1000;
constexpr int LARGE_COUNT = 10000;
constexpr size_t CAPACITY = 1 << 24;
constexpr double LINEAR_GROWTH_LIMIT = 20;  // for ten times as many entries, which may exceed a cache

using Map = std::map<int32_t, std::string>;

Map MakeEntries(int64_t count)
{
    Map map;
    for (int32_t key = 0; key < count; ++key) {
        map[key] = "value " + std::to_string(key);
    }
    return map;
}

void MarshalMap(benchmark::State &state, int64_t count)
{
    const Map map = MakeEntries(count);
    for (auto _ : state) {
        MessageParcel parcel;
        parcel.SetMaxCapacity(CAPACITY);
        benchmark::DoNotOptimize(IpcUtils::Marshalling(parcel, map));
    }
}

void MarshalMapBaseline(benchmark::State &state)
{
    const Map map = MakeEntries(LARGE_COUNT);
    for (auto _ : state) {
        MessageParcel parcel;
        parcel.SetMaxCapacity(CAPACITY);
        parcel.WriteUint32(static_cast<uint32_t>(map.size()));
        for (const auto &[key, value] : map) {
            benchmark::DoNotOptimize(parcel.WriteString(std::to_string(key) + SEPARATOR + value));
        }
    }
}

// Measures `read(parcel)`, which reads a parcel with a map of `count` entries.
template <typename Function>
void MeasureRead(benchmark::State &state, int64_t count, Function read)
{
    MessageParcel parcel;
    parcel.SetMaxCapacity(CAPACITY);
    IpcUtils::Marshalling(parcel, MakeEntries(count));
    for (auto _ : state) {
        parcel.RewindRead(0);
        read(parcel);
    }
}

void UnmarshalMap(benchmark::State &state, int64_t count)
{
    MeasureRead(state, count, [](MessageParcel &parcel) {
        Map map;
        benchmark::DoNotOptimize(IpcUtils::UnMarshalling(parcel, map));
    });
}

void UnmarshalMapBaseline(benchmark::State &state, int64_t count)
{
    MeasureRead(state, count, [](MessageParcel &parcel) {
        Map map;
        std::string entry;
        for (uint32_t left = parcel.ReadUint32(); left > 0; --left) {
            parcel.ReadString(entry);
            int32_t key = 0;
            const char *keyEnd = std::from_chars(entry.data(), entry.data() + entry.size(), key).ptr;
            const auto added = map.emplace_hint(map.end(), key, keyEnd + 1);
            DHLog(DH_LOG_INFO, "[ostraadapterutils][UnMarshalling]:the key is %d, value is %s", key,
                  added->second.c_str());
        }
        benchmark::DoNotOptimize(map);
    });
}

const int READ_ROW =
    AddRow("`UnMarshalling`, 10 000 entries", WithSize(UnmarshalMap, LARGE_COUNT),
           "hand-written loop, one `DHLog` each", WithSize(UnmarshalMapBaseline, LARGE_COUNT), SAME_WORK_LIMIT);
const int WRITE_ROW = AddRow("`Marshalling`, 10 000 entries", WithSize(MarshalMap, LARGE_COUNT), "hand-written loop",
                             MarshalMapBaseline, SAME_WORK_LIMIT);
const int READ_GROWTH_ROW = AddRow("`UnMarshalling`, growth with entries", WithSize(UnmarshalMap, LARGE_COUNT),
                                   "a tenth of them", WithSize(UnmarshalMap, SMALL_COUNT), LINEAR_GROWTH_LIMIT);
const int WRITE_GROWTH_ROW = AddRow("`Marshalling`, growth with entries", WithSize(MarshalMap, LARGE_COUNT),
                                    "a tenth of them", WithSize(MarshalMap, SMALL_COUNT), LINEAR_GROWTH_LIMIT);
const int READ_CURVE = AddCurve("entries", "UnMarshalling", UnmarshalMap, 1, LARGE_COUNT);
const int READ_BASELINE_CURVE =
    AddCurve("entries", "baseline: hand-written loop", UnmarshalMapBaseline, 1, LARGE_COUNT);

std::vector<std::string> MakeDevices()
{
    std::vector<std::string> devices;
    for (int i = 0; i < SMALL_COUNT; ++i) {
        devices.push_back("0123456789abcdef0123456789abcdef" + std::to_string(i));
    }
    return devices;
}

void PublishToOneListener(benchmark::State &state)
{
    struct Listener : IPublisherListener {
        void OnMessage(const DHTopic /* topic */, const std::string &message) override
        {
            benchmark::DoNotOptimize(message.data());
        }
    };
    const sptr<Listener> listener(new Listener());
    OstraContext &context = OstraContext::GetInstance();
    context.GetDHFwkKit()->RegisterPublisherListener(static_cast<DHTopic>(8), listener);
    const std::vector<std::string> devices = MakeDevices();
    for (auto _ : state) {
        state.PauseTiming();
        for (const std::string &device : devices) {
            context.AddWaitNotify(device, ISOMERISM_CONNECT);
        }
        state.ResumeTiming();
        context.PublishMessage();
    }
    context.GetDHFwkKit()->UnregisterPublisherListener(static_cast<DHTopic>(8), listener);
}

void PublishBaseline(benchmark::State &state)
{
    const std::vector<std::string> devices = MakeDevices();
    for (auto _ : state) {
        for (const std::string &device : devices) {
            cJSON *notification = cJSON_CreateObject();
            cJSON_AddItemToObject(notification, "dev_id", cJSON_CreateString(device.c_str()));
            cJSON_AddItemToObject(notification, "isomerism_event", cJSON_CreateString(ISOMERISM_CONNECT.c_str()));
            char *message = cJSON_PrintUnformatted(notification);
            benchmark::DoNotOptimize(message);
            DHLog(DH_LOG_INFO, "[ostraadapterutils][PublishMessage]:PublishMessage.");
            cJSON_free(message);
            cJSON_Delete(notification);
        }
    }
}

const int PUBLISH_ROW = AddRow("`PublishMessage`, 1 000 entries, one listener", PublishToOneListener,
                               "the same cJSON calls and log lines", PublishBaseline, SAME_WORK_LIMIT);

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
