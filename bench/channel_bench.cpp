// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
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
constexpr int64_t MAX_BYTES = 64 * MEBIBYTE;
constexpr int SMALL_MESSAGE = 64;

// Returns MAX_BYTES random bytes, the same in each call.
unsigned char *Bytes()
{
    static std::vector<unsigned char> bytes = [] {
        std::mt19937 random(5);
        std::vector<unsigned char> filled(MAX_BYTES);
        std::generate(filled.begin(), filled.end(), [&random] { return static_cast<unsigned char>(random()); });
        return filled;
    }();
    return bytes.data();
}

uint16_t BoostCrc(uint16_t /* crc */, const uint8_t *data, size_t length)
{
    boost::crc_16_type crc;
    crc.process_bytes(data, length);
    return crc.checksum();
}

// The baseline: any checksum must at least read all bytes.
uint16_t ReadBytes(uint16_t /* crc */, const uint8_t *data, size_t length)
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

using CrcFunction = uint16_t (*)(uint16_t, const uint8_t *, size_t);

template <CrcFunction CRC>
void MeasureCrc(benchmark::State &state, int64_t size)
{
    const unsigned char *bytes = Bytes();
    for (auto _ : state) {
        benchmark::DoNotOptimize(CRC(0, bytes, static_cast<size_t>(size)));
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

// Computes the CRC and logs it as GetCrc does.
template <CrcFunction CRC>
void MeasureCrcAndLog(benchmark::State &state, int64_t size)
{
    const unsigned char *bytes = Bytes();
    for (auto _ : state) {
        const uint16_t crc = CRC(0, bytes, static_cast<size_t>(size));
        DHLog(DH_LOG_INFO, "[ostraadapterutils][GetCrc]:ChannelProtocol::GetCrc: getCrc16:%s",
              GetAnonyString(std::to_string(crc)).c_str());
        benchmark::DoNotOptimize(crc);
    }
}

constexpr double TABLES_LIMIT = 1 / 3.0;
const double CRC_LIMIT = HasCarryLessMultiplication() ? 1 / 20.0 : TABLES_LIMIT;
const int CRC_ROW = AddRow("`GetCrc`, 1 MiB", WithSize(MeasureGetCrc, MEBIBYTE), "`boost::crc_16_type`",
                           WithSize(MeasureCrc<BoostCrc>, MEBIBYTE), CRC_LIMIT);
const int TABLES_ROW = AddRow("`GetCrc`, 1 MiB, by tables", WithSize(MeasureCrcAndLog<ExtendCrc16ByTables>, MEBIBYTE),
                              "`boost::crc_16_type`", WithSize(MeasureCrc<BoostCrc>, MEBIBYTE), TABLES_LIMIT);
const int SMALL_ROW = AddRow("`GetCrc`, 64 B", WithSize(MeasureGetCrc, SMALL_MESSAGE), "byte-wise loop, same log line",
                             WithSize(MeasureCrcAndLog<ExtendCrc16ByByte>, SMALL_MESSAGE), 1);

const int BOOST_CURVE = AddCurve("crc", "boost::crc_16_type", MeasureCrc<BoostCrc>, 1, MAX_BYTES);
const int BYTES_CURVE = AddCurve("crc", "by bytes", MeasureCrc<ExtendCrc16ByByte>, 1, MAX_BYTES);
const int TABLES_CURVE = AddCurve("crc", "by tables", MeasureCrc<ExtendCrc16ByTables>, 1, MAX_BYTES);
const int SELECTED_CURVE = AddCurve("crc", "selected implementation", MeasureCrc<ExtendCrc16>, 1, MAX_BYTES);
const int READ_CURVE = AddCurve("crc", "baseline: reading the bytes", MeasureCrc<ReadBytes>, 1, MAX_BYTES);

// The speed of a copy depends on how source and destination are aligned to each other. This class allocates a random
// number of blocks of the same size, and one of a random size, so that each repetition gets other heap addresses.
class RandomHeapLayout {
public:
    explicit RandomHeapLayout(int64_t size)
    {
        static std::mt19937 random(6);
        for (auto count = random() % 8; count > 0; --count) {
            blocks_.emplace_back(new unsigned char[static_cast<size_t>(size)]);
        }
        blocks_.emplace_back(new unsigned char[2000 + random() % 64 * 16]);
    }

private:
    std::vector<std::unique_ptr<unsigned char[]>> blocks_;
};

constexpr int HEADER = 300;
constexpr unsigned char HEADER_BYTES[] = {0x2C, 0x82};

void MeasureFrame(benchmark::State &state, int64_t size)
{
    const RandomHeapLayout blocks(size);
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

void MeasureFrameBaseline(benchmark::State &state, int64_t contentSize)
{
    const RandomHeapLayout blocks(contentSize);
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

const int FRAME_ROW =
    AddRow("frame of 1 KiB, packed and parsed", WithSize(MeasureFrame, KIBIBYTE),
           "two `new[]`, three `memcpy_s`, two `delete[]`", WithSize(MeasureFrameBaseline, KIBIBYTE), 2);
const int FRAME_CURVE = AddCurve("frames", "a frame packed and parsed", MeasureFrame, 1, MEBIBYTE);
const int COPIES_CURVE =
    AddCurve("frames", "baseline: two allocations, three copies", MeasureFrameBaseline, 1, MEBIBYTE);

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
