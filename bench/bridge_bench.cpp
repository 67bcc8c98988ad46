// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>
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

constexpr int FEW = 1000;
constexpr int MANY = 10000;
constexpr size_t ROOMY_CAPACITY = 1 << 24;

using Map = std::map<int32_t, std::string>;

Map SomeEntries(int64_t count)
{
    Map map;
    for (int32_t key = 0; key < count; ++key) {
        map[key] = "value " + std::to_string(key);
    }
    return map;
}

void Write(benchmark::State &state, int64_t count)
{
    const Map map = SomeEntries(count);
    for (auto _ : state) {
        MessageParcel parcel;
        parcel.SetMaxCapacity(ROOMY_CAPACITY);
        benchmark::DoNotOptimize(IpcUtils::Marshalling(parcel, map));
    }
}

void WriteFewEntries(benchmark::State &state)
{
    Write(state, FEW);
}
BENCHMARK(WriteFewEntries);

void WriteManyEntries(benchmark::State &state)
{
    Write(state, MANY);
}
BENCHMARK(WriteManyEntries);

void WriteByHand(benchmark::State &state)
{
    const Map map = SomeEntries(MANY);
    for (auto _ : state) {
        MessageParcel parcel;
        parcel.SetMaxCapacity(ROOMY_CAPACITY);
        parcel.WriteUint32(static_cast<uint32_t>(map.size()));
        for (const auto &[key, value] : map) {
            benchmark::DoNotOptimize(parcel.WriteString(std::to_string(key) + SEPARATOR + value));
        }
    }
}
BENCHMARK(WriteByHand);

void Read(benchmark::State &state, int64_t count)
{
    MessageParcel parcel;
    parcel.SetMaxCapacity(ROOMY_CAPACITY);
    IpcUtils::Marshalling(parcel, SomeEntries(count));
    for (auto _ : state) {
        parcel.RewindRead(0);
        Map map;
        benchmark::DoNotOptimize(IpcUtils::UnMarshalling(parcel, map));
    }
}

void ReadFewEntries(benchmark::State &state)
{
    Read(state, FEW);
}
BENCHMARK(ReadFewEntries);

void ReadManyEntries(benchmark::State &state)
{
    Read(state, MANY);
}
BENCHMARK(ReadManyEntries);

void MeasureReadingByHand(benchmark::State &state, int64_t count)
{
    MessageParcel parcel;
    parcel.SetMaxCapacity(ROOMY_CAPACITY);
    IpcUtils::Marshalling(parcel, SomeEntries(count));
    for (auto _ : state) {
        parcel.RewindRead(0);
        Map map;
        std::string text;
        for (uint32_t left = parcel.ReadUint32(); left > 0; --left) {
            parcel.ReadString(text);
            int32_t key = 0;
            const char *keyEnd = std::from_chars(text.data(), text.data() + text.size(), key).ptr;
            const auto end = map.emplace_hint(map.end(), key, keyEnd + 1);
            DHLog(DH_LOG_INFO, "[ostraadapterutils][UnMarshalling]:the key is %d, value is %s", key,
                  end->second.c_str());
        }
        benchmark::DoNotOptimize(map);
    }
}

void ReadByHand(benchmark::State &state)
{
    MeasureReadingByHand(state, MANY);
}
BENCHMARK(ReadByHand);

const int READ_ROW = AddRow({"`UnMarshalling`, 10 000 entries", "ReadManyEntries",
                             "reading into a map by hand, one `DHLog` each", "ReadByHand", 1.3});
const int WRITE_ROW =
    AddRow({"`Marshalling`, 10 000 entries", "WriteManyEntries", "composing and writing by hand", "WriteByHand", 1});
const int READ_GROWTH_ROW =
    AddRow({"`UnMarshalling`, 10 000 entries", "ReadManyEntries", "itself, 1 000 entries", "ReadFewEntries", 13});
const int WRITE_GROWTH_ROW =
    AddRow({"`Marshalling`, 10 000 entries", "WriteManyEntries", "itself, 1 000 entries", "WriteFewEntries", 13});

void GrowUnMarshalling(benchmark::State &state)
{
    Read(state, state.range());
}
BENCHMARK(GrowUnMarshalling)->RangeMultiplier(4)->Range(1, MANY);

void GrowReadingByHand(benchmark::State &state)
{
    MeasureReadingByHand(state, state.range());
}
BENCHMARK(GrowReadingByHand)->RangeMultiplier(4)->Range(1, MANY);

const int READ_CURVE = AddCurve({"entries", "UnMarshalling", "GrowUnMarshalling"});
const int READ_FLOOR = AddCurve({"entries", "floor: reading into a map by hand", "GrowReadingByHand"});

std::vector<std::string> SomeDevices()
{
    std::vector<std::string> devices;
    for (int i = 0; i < FEW; ++i) {
        devices.push_back("0123456789abcdef0123456789abcdef" + std::to_string(i));
    }
    return devices;
}

void PublishWithOneListener(benchmark::State &state)
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
    const std::vector<std::string> devices = SomeDevices();
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
BENCHMARK(PublishWithOneListener);

void PublishByHand(benchmark::State &state)
{
    const std::vector<std::string> devices = SomeDevices();
    for (auto _ : state) {
        for (const std::string &device : devices) {
            cJSON *notification = cJSON_CreateObject();
            cJSON_AddItemToObject(notification, "dev_id", cJSON_CreateString(device.c_str()));
            cJSON_AddItemToObject(notification, "isomerism_event", cJSON_CreateString(ISOMERISM_CONNECT.c_str()));
            char *text = cJSON_PrintUnformatted(notification);
            benchmark::DoNotOptimize(text);
            DHLog(DH_LOG_INFO, "[ostraadapterutils][PublishMessage]:PublishMessage.");
            cJSON_free(text);
            cJSON_Delete(notification);
        }
    }
}
BENCHMARK(PublishByHand);

const int PUBLISH_ROW = AddRow({"`PublishMessage`, 1 000 entries, one listener", "PublishWithOneListener",
                                "the same cJSON calls and log lines by hand", "PublishByHand", 1.2});

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
