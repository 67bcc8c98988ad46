// SPDX-License-Identifier: Apache-2.0

#include "stream_end.h"

#include <charconv>
#include <vector>

#include "parcel_map.h"

namespace {

// Every number that the frame carries, in the order of their keys in the map.
std::vector<uint64_t *> NumbersOf(StreamEnd &end)
{
    std::vector<uint64_t *> numbers = {&end.sent.frames,   &end.sent.bytes,   &end.sent.digest,
                                       &end.spoilt.frames, &end.spoilt.bytes, &end.spoilt.digest};
    for (uint32_t damage = 0; damage < DAMAGES; ++damage) {
        numbers.push_back(&end.damaged[static_cast<Damage>(damage)]);
    }
    return numbers;
}

bool ReadNumber(const std::string &text, uint64_t &number)
{
    const char *const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, number);
    return error == std::errc() && end == textEnd;
}

}  // namespace

bool SendEnd(FrameSender &sender, const DamageCount &damaged)
{
    StreamEnd end{sender.Sent(), sender.Spoilt(), damaged};
    ParcelMap map;
    for (const uint64_t *number : NumbersOf(end)) {
        map.emplace(static_cast<int32_t>(map.size()), std::to_string(*number));
    }
    return SendMap(sender, FrameKind::END, map);
}

std::optional<StreamEnd> ReadEnd(ByteView content)
{
    const std::optional<ParcelMap> map = ReadMap(content);
    if (!map) {
        return std::nullopt;
    }
    StreamEnd end;
    int32_t key = 0;
    for (uint64_t *number : NumbersOf(end)) {
        const auto entry = map->find(key++);
        if (entry == map->end() || !ReadNumber(entry->second, *number)) {
            return std::nullopt;
        }
    }
    return end;
}

std::string Shortfall(const StreamEnd &end, const LinkTotals &arrived, const DamageCount &damaged)
{
    const LinkTotals expected = end.sent - end.spoilt;
    if (arrived.frames < expected.frames) {
        return std::to_string(expected.frames - arrived.frames) + " of " + std::to_string(expected.frames) +
               " frames are missing, damaged: " + damaged.String();
    }
    if (!(damaged == end.damaged)) {
        return "damaged frames: " + end.damaged.String() + " on the way, but found " + damaged.String();
    }
    if (!(arrived == expected)) {
        return "what arrived differs from what was sent";
    }
    return "";
}
