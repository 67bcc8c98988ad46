// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>

#include <boost/crc.hpp>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "../protocol/crc16.h"
#include "../protocol/crc16_internal.h"
#include "channel_protocol.h"
#include "dh_utils_tools.h"
#include "ostra_adapter_log.h"
#include "ratio_table.h"
#include "securec.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int64_t KIBIBYTE = 1 << 10;
constexpr int64_t MEBIBYTE = 1 << 20;
constexpr int64_t MOST_BYTES = 64 * MEBIBYTE;
constexpr int SMALL_MESSAGE = 64;

// The same random bytes for all.
unsigned char *Bytes()
{
    static std::vector<unsigned char> bytes = [] {
        std::mt19937 random(5);
        std::vector<unsigned char> made(MOST_BYTES);
        for (unsigned char &byte : made) {
            byte = static_cast<unsigned char>(random());
        }
        return made;
    }();
    return bytes.data();
}

void LogAsGetCrcDoes(uint32_t crc)
{
    DHLog(DH_LOG_INFO, "[ostraadapterutils][GetCrc]:ChannelProtocol::GetCrc: getCrc16:%s",
          GetAnonyString(std::to_string(crc)).c_str());
}

uint16_t CrcByBoost(uint16_t /* crc */, const uint8_t *data, size_t length)
{
    boost::crc_16_type crc;
    crc.process_bytes(data, length);
    return crc.checksum();
}

// No check of bytes is faster than looking at each of them.
uint16_t ReadOnly(uint16_t /* crc */, const uint8_t *data, size_t length)
{
    uint64_t sum = 0;
    for (; length >= sizeof(sum); data += sizeof(sum), length -= sizeof(sum)) {
        uint64_t word = 0;
        std::memcpy(&word, data, sizeof(word));
        sum ^= word;
    }
    for (; length > 0; ++data, --length) {
        sum ^= *data;
    }
    return static_cast<uint16_t>(sum);
}

template <uint16_t (*METHOD)(uint16_t, const uint8_t *, size_t)>
void MeasureCrc(benchmark::State &state, int64_t size)
{
    const unsigned char *bytes = Bytes();
    for (auto _ : state) {
        benchmark::DoNotOptimize(METHOD(0, bytes, static_cast<size_t>(size)));
        benchmark::ClobberMemory();
    }
}

void MeasureGetCrc(benchmark::State &state, int64_t size)
{
    const ChannelProtocol frame;
    unsigned char *bytes = Bytes();
    for (auto _ : state) {
        benchmark::DoNotOptimize(frame.GetCrc(bytes, static_cast<int>(size)));
    }
}

void CrcOfMebibyte(benchmark::State &state)
{
    MeasureGetCrc(state, MEBIBYTE);
}
BENCHMARK(CrcOfMebibyte);

void CrcOfMebibyteByTables(benchmark::State &state)
{
    const unsigned char *bytes = Bytes();
    for (auto _ : state) {
        const uint16_t crc = ExtendCrc16ByTables(0, bytes, MEBIBYTE);
        LogAsGetCrcDoes(crc);
        benchmark::DoNotOptimize(crc);
    }
}
BENCHMARK(CrcOfMebibyteByTables);

void BoostCrcOfMebibyte(benchmark::State &state)
{
    MeasureCrc<CrcByBoost>(state, MEBIBYTE);
}
BENCHMARK(BoostCrcOfMebibyte);

const double CRC_BAR = HasCarryLessMultiplication() ? 1 / 40.0 : 1 / 10.0;
const int CRC_ROW = AddRow({"`GetCrc`, 1 MiB", "CrcOfMebibyte", "`boost::crc_16_type`", "BoostCrcOfMebibyte", CRC_BAR});
const int TABLES_ROW = AddRow({"the same without carry-less multiplication", "CrcOfMebibyteByTables",
                               "`boost::crc_16_type`", "BoostCrcOfMebibyte", 1 / 10.0});

void CrcOfSmallMessage(benchmark::State &state)
{
    MeasureGetCrc(state, SMALL_MESSAGE);
}
BENCHMARK(CrcOfSmallMessage);

void ByteWiseLoopAndLog(benchmark::State &state)
{
    const unsigned char *bytes = Bytes();
    for (auto _ : state) {
        const uint16_t crc = ExtendCrc16ByByte(0, bytes, SMALL_MESSAGE);
        LogAsGetCrcDoes(crc);
        benchmark::DoNotOptimize(crc);
    }
}
BENCHMARK(ByteWiseLoopAndLog);

const int SMALL_ROW =
    AddRow({"`GetCrc`, 64 B", "CrcOfSmallMessage", "byte-wise loop, same log line", "ByteWiseLoopAndLog", 1});

template <uint16_t (*METHOD)(uint16_t, const uint8_t *, size_t)>
void GrowCrc(benchmark::State &state)
{
    MeasureCrc<METHOD>(state, state.range());
}

int AddCrcCurve(const char *label, const char *name, benchmark::internal::Function *measure)
{
    benchmark::RegisterBenchmark(name, measure)->RangeMultiplier(4)->Range(1, MOST_BYTES);
    return AddCurve({"crc", label, name});
}

const int BOOST_CURVE = AddCrcCurve("boost::crc_16_type", "GrowCrcByBoost", GrowCrc<CrcByBoost>);
const int BYTES_CURVE = AddCrcCurve("by bytes", "GrowCrcByBytes", GrowCrc<ExtendCrc16ByByte>);
const int TABLES_CURVE = AddCrcCurve("by tables", "GrowCrcByTables", GrowCrc<ExtendCrc16ByTables>);
const int CHOSEN_CURVE = AddCrcCurve("as chosen", "GrowCrcAsChosen", GrowCrc<ExtendCrc16>);
const int READ_CURVE = AddCrcCurve("floor: reading the bytes", "GrowReading", GrowCrc<ReadOnly>);

// Copies of a kilobyte are as fast as their addresses happen to be aligned to each other, so each repetition runs on
// other heap blocks: it keeps a random number of blocks of the same size, and of bytes before fresh ones, to itself.
class OtherHeapBlocks {
public:
    explicit OtherHeapBlocks(int64_t size)
    {
        static std::mt19937 random(6);
        for (auto count = random() % 8; count > 0; --count) {
            held_.emplace_back(new unsigned char[static_cast<size_t>(size)]);
        }
        held_.emplace_back(new unsigned char[2000 + random() % 64 * 16]);
    }

private:
    std::vector<std::unique_ptr<unsigned char[]>> held_;
};

constexpr int HEADER = 300;
constexpr unsigned char HEADER_BYTES[] = {0x2C, 0x82};

void MeasureFrame(benchmark::State &state, int64_t size)
{
    const OtherHeapBlocks blocks(size);
    unsigned char *content = Bytes();
    for (auto _ : state) {
        ChannelProtocol sent;
        sent.Create(HEADER, static_cast<int>(size));
        sent.WriteContent(content, static_cast<int>(size));
        ChannelProtocol received;
        received.CreateFromBuffer(sent.GetBuffer(), sent.GetBufferSize());
        UnPackagedEA ea;
        received.ReadEA(ea, 0);
        benchmark::DoNotOptimize(ea);
    }
}

void MeasureTwoCopies(benchmark::State &state, int64_t contentSize)
{
    const OtherHeapBlocks blocks(contentSize);
    const unsigned char *content = Bytes();
    const auto size = static_cast<size_t>(contentSize) + sizeof(HEADER_BYTES);
    for (auto _ : state) {
        std::unique_ptr<unsigned char[]> sent(new unsigned char[size]);
        memcpy_s(sent.get(), size, HEADER_BYTES, sizeof(HEADER_BYTES));
        memcpy_s(sent.get() + sizeof(HEADER_BYTES), size - sizeof(HEADER_BYTES), content, size - sizeof(HEADER_BYTES));
        benchmark::DoNotOptimize(sent.get());
        std::unique_ptr<unsigned char[]> received(new unsigned char[size]);
        memcpy_s(received.get(), size, sent.get(), size);
        benchmark::DoNotOptimize(received.get());
        benchmark::ClobberMemory();
    }
}

void FrameThereAndBack(benchmark::State &state)
{
    MeasureFrame(state, KIBIBYTE);
}
BENCHMARK(FrameThereAndBack);

void TwoCopies(benchmark::State &state)
{
    MeasureTwoCopies(state, KIBIBYTE);
}
BENCHMARK(TwoCopies);

const int FRAME_ROW = AddRow({"a frame of 1 KiB packed, taken and read", "FrameThereAndBack",
                              "two `new[]`, three `memcpy_s`, two `delete[]`", "TwoCopies", 1.4});

void GrowFrame(benchmark::State &state)
{
    MeasureFrame(state, state.range());
}
BENCHMARK(GrowFrame)->RangeMultiplier(4)->Range(1, MEBIBYTE);

void GrowTwoCopies(benchmark::State &state)
{
    MeasureTwoCopies(state, state.range());
}
BENCHMARK(GrowTwoCopies)->RangeMultiplier(4)->Range(1, MEBIBYTE);

const int FRAME_CURVE = AddCurve({"frames", "a frame packed, taken and read", "GrowFrame"});
const int COPIES_CURVE = AddCurve({"frames", "floor: two allocations, three copies", "GrowTwoCopies"});

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
