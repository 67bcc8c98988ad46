// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>

#include <array>
#include <boost/crc.hpp>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "channel_protocol.h"
#include "ratio_table.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr size_t MEBIBYTE = 1 << 20;
constexpr int FRAME_CONTENT = 1024;

std::vector<unsigned char> RandomBytes(size_t size)
{
    std::mt19937 random(5);
    std::vector<unsigned char> bytes(size);
    for (unsigned char &byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    return bytes;
}

void CrcOfMebibyte(benchmark::State &state)
{
    std::vector<unsigned char> bytes = RandomBytes(MEBIBYTE);
    ChannelProtocol frame;
    for (auto _ : state) {
        benchmark::DoNotOptimize(frame.GetCrc(bytes.data(), static_cast<int>(bytes.size())));
    }
}
BENCHMARK(CrcOfMebibyte);

constexpr std::array<uint16_t, 256> MakeTable()
{
    std::array<uint16_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        uint32_t crc = i;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001 : crc >> 1;
        }
        table[i] = static_cast<uint16_t>(crc);
    }
    return table;
}

void ByteWiseLoop(benchmark::State &state)
{
    static constexpr std::array<uint16_t, 256> table = MakeTable();
    const std::vector<unsigned char> bytes = RandomBytes(MEBIBYTE);
    for (auto _ : state) {
        uint32_t crc = 0;
        for (unsigned char byte : bytes) {
            crc = (crc >> 8) ^ table[(crc ^ byte) & 0xFF];
        }
        benchmark::DoNotOptimize(crc);
    }
}
BENCHMARK(ByteWiseLoop);

void BoostCrc16(benchmark::State &state)
{
    const std::vector<unsigned char> bytes = RandomBytes(MEBIBYTE);
    for (auto _ : state) {
        boost::crc_16_type crc;
        crc.process_bytes(bytes.data(), bytes.size());
        benchmark::DoNotOptimize(crc.checksum());
    }
}
BENCHMARK(BoostCrc16);

const int LOOP_ROW =
    AddRow({"`GetCrc`, 1 MiB", "CrcOfMebibyte", "byte-wise loop over a constant table", "ByteWiseLoop", 1 / 0.97});
const int BOOST_ROW = AddRow({"`GetCrc`, 1 MiB", "CrcOfMebibyte", "`boost::crc_16_type`", "BoostCrc16", 1});

// Copies of a kilobyte are as fast as their addresses happen to be aligned to each other, so each repetition runs on
// other heap blocks: it keeps a random number of blocks of the same size, and of bytes before fresh ones, to itself.
class OtherHeapBlocks {
public:
    OtherHeapBlocks()
    {
        static std::mt19937 random(6);
        for (auto count = random() % 8; count > 0; --count) {
            held_.emplace_back(new unsigned char[FRAME_CONTENT + 2]);
        }
        held_.emplace_back(new unsigned char[2000 + random() % 64 * 16]);
    }

private:
    std::vector<std::unique_ptr<unsigned char[]>> held_;
};

void FrameThereAndBack(benchmark::State &state)
{
    const OtherHeapBlocks blocks;
    std::vector<unsigned char> content = RandomBytes(FRAME_CONTENT);
    for (auto _ : state) {
        ChannelProtocol sent;
        sent.Create(300, FRAME_CONTENT);
        sent.WriteContent(content.data(), FRAME_CONTENT);
        ChannelProtocol received;
        received.CreateFromBuffer(sent.GetBuffer(), sent.GetBufferSize());
        UnPackagedEA ea;
        received.ReadEA(ea, 0);
        benchmark::DoNotOptimize(ea);
    }
}
BENCHMARK(FrameThereAndBack);

void TwoCopies(benchmark::State &state)
{
    const OtherHeapBlocks blocks;
    const std::vector<unsigned char> content = RandomBytes(FRAME_CONTENT + 2);
    for (auto _ : state) {
        std::unique_ptr<unsigned char[]> sent(new unsigned char[content.size()]);
        benchmark::DoNotOptimize(sent.get());
        std::memcpy(sent.get(), content.data(), content.size());
        std::unique_ptr<unsigned char[]> received(new unsigned char[content.size()]);
        benchmark::DoNotOptimize(received.get());
        std::memcpy(received.get(), sent.get(), content.size());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(TwoCopies);

const int FRAME_ROW = AddRow({"`Create` + `WriteContent` + `CreateFromBuffer` + `ReadEA`, 1 KiB", "FrameThereAndBack",
                              "two `new[]`/`memcpy`/`delete[]` of the same size", "TwoCopies", 1.5});

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
