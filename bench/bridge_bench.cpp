// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>
#include <cJSON.h>

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

Map SomeEntries(int count)
{
    Map map;
    for (int key = 0; key < count; ++key) {
        map[key] = "value " + std::to_string(key);
    }
    return map;
}

std::vector<std::string> ReadyTexts(const Map &map)
{
    std::vector<std::string> texts;
    texts.reserve(map.size());
    for (const auto &[key, value] : map) {
        texts.push_back(std::to_string(key) + "#" + value);
    }
    return texts;
}

void Write(benchmark::State &state, int count)
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

void WriteReadyTexts(benchmark::State &state)
{
    const std::vector<std::string> texts = ReadyTexts(SomeEntries(MANY));
    for (auto _ : state) {
        MessageParcel parcel;
        parcel.SetMaxCapacity(ROOMY_CAPACITY);
        parcel.WriteUint32(static_cast<uint32_t>(texts.size()));
        for (const std::string &text : texts) {
            benchmark::DoNotOptimize(parcel.WriteString(text));
        }
    }
}
BENCHMARK(WriteReadyTexts);

void Read(benchmark::State &state, int count)
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

void ReadTextsAndLog(benchmark::State &state)
{
    MessageParcel parcel;
    parcel.SetMaxCapacity(ROOMY_CAPACITY);
    IpcUtils::Marshalling(parcel, SomeEntries(MANY));
    for (auto _ : state) {
        parcel.RewindRead(0);
        const uint32_t count = parcel.ReadUint32();
        std::vector<std::string> texts(count);
        for (uint32_t i = 0; i < count; ++i) {
            parcel.ReadString(texts[i]);
            DHLog(DH_LOG_INFO, "[ostraadapterutils][UnMarshalling]:the key is %d, value is %s", static_cast<int>(i),
                  texts[i].c_str());
        }
    }
}
BENCHMARK(ReadTextsAndLog);

const int READ_ROW = AddRow({"`UnMarshalling`, 10 000 entries, log output off", "ReadManyEntries",
                             "reading the strings into a vector, one `DHLog` each", "ReadTextsAndLog", 1.5});
const int WRITE_ROW =
    AddRow({"`Marshalling`, 10 000 entries", "WriteManyEntries", "writing the ready strings", "WriteReadyTexts", 2});
const int READ_GROWTH_ROW =
    AddRow({"`UnMarshalling`, 10 000 entries", "ReadManyEntries", "itself, 1 000 entries", "ReadFewEntries", 13});
const int WRITE_GROWTH_ROW =
    AddRow({"`Marshalling`, 10 000 entries", "WriteManyEntries", "itself, 1 000 entries", "WriteFewEntries", 13});

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
            cJSON_free(text);
            cJSON_Delete(notification);
        }
    }
}
BENCHMARK(PublishByHand);

const int PUBLISH_ROW = AddRow({"`PublishMessage`, 1 000 entries, one listener, log output off",
                                "PublishWithOneListener", "the same cJSON calls by hand", "PublishByHand", 1.3});

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
