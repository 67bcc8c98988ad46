// SPDX-License-Identifier: Apache-2.0

#include "fault_injector.h"

#include <algorithm>
#include <cerrno>

using OHOS::DistributedHardware::OstraAdapter::ChannelProtocol;

namespace {

// In random order, and each kind of damage as often as the others.
std::vector<Damage> DrawDamages(uint64_t count, std::mt19937_64 &random)
{
    std::vector<Damage> damages;
    for (uint64_t i = 0; i < count; ++i) {
        damages.push_back(static_cast<Damage>(i % DAMAGES));
    }
    std::shuffle(damages.begin(), damages.end(), random);
    return damages;
}

// At least two apart, and none at the last piece: what overtakes a piece is whole.
std::vector<double> DrawPieces(uint64_t count, uint64_t pieces, std::mt19937_64 &random)
{
    std::vector<double> places;
    uint64_t left = std::min(count, MostFaults(pieces));
    for (uint64_t i = 0, candidates = pieces - left; left > 0; ++i) {
        if (random() % (candidates - i) < left) {
            places.push_back(static_cast<double>(i + places.size()));
            --left;
        }
    }
    return places;
}

std::vector<double> DrawMoments(uint64_t count, double seconds, std::mt19937_64 &random)
{
    constexpr double lastMoment = 0.8;  // leaves the time to come by
    std::uniform_real_distribution<double> moment(0, seconds * lastMoment);
    std::vector<double> places(static_cast<size_t>(count));
    std::generate(places.begin(), places.end(), [&] { return moment(random); });
    std::sort(places.begin(), places.end());
    return places;
}

std::vector<double> DrawGaps(uint64_t count, std::mt19937_64 &random)
{
    constexpr uint64_t longestGap = 20;
    std::vector<double> places;
    for (uint64_t piece = 0; places.size() < count; ++piece) {
        piece += 1 + random() % longestGap;
        places.push_back(static_cast<double>(piece));
    }
    return places;
}

}  // namespace

uint64_t MostFaults(uint64_t pieces)
{
    return pieces / 2;
}

FaultPlan::FaultPlan(const FaultOptions &options, const StreamLength &length)
    : random_(options.seed), isTimed_(length.seconds.has_value())
{
    const std::vector<Damage> damages = DrawDamages(options.count, random_);
    const std::vector<double> places = length.pieces    ? DrawPieces(options.count, *length.pieces, random_)
                                       : length.seconds ? DrawMoments(options.count, *length.seconds, random_)
                                                        : DrawGaps(options.count, random_);
    for (size_t i = 0; i < places.size(); ++i) {
        faults_.push_back({places[i], damages[i]});
    }
}

std::optional<Damage> FaultPlan::NextPiece(bool isFree)
{
    const auto now = std::chrono::steady_clock::now();
    start_ = pieces_ == 0 ? now : start_;
    const auto piece = static_cast<double>(pieces_++);
    if (!isFree || next_ == faults_.size()) {
        return std::nullopt;
    }
    const std::chrono::duration<double> elapsed = now - start_;
    if ((isTimed_ ? elapsed.count() : piece) < faults_[next_].place) {
        return std::nullopt;
    }
    return faults_[next_++].damage;
}

uint64_t FaultPlan::Left() const
{
    return faults_.size() - next_;
}

size_t FaultPlan::Random(size_t bound)
{
    return static_cast<size_t>(random_() % bound);
}

FaultyRoad::FaultyRoad(Road &road, const FaultOptions &options, const StreamLength &length)
    : road_(road),
      plan_(options, length),
      flippedFrame_(options.flippedFrame),
      tooLong_(options.count > 0 ? 2 * MAX_MESSAGE_BYTES : 0)
{
    held_.reserve(MAX_MESSAGE_BYTES);
}

Carried FaultyRoad::Carry(FrameKind kind, ByteView prefix, ByteView frame)
{
    if (flippedFrame_ == frames_++) {
        flippedFrame_.reset();
        frame.data[frame.size / 2] ^= 1;
    }
    const bool isHolding = IsHolding();
    const std::optional<Damage> damage = kind == FrameKind::STREAM ? plan_.NextPiece(!isHolding) : std::nullopt;
    if (isHolding) {
        return road_.Carry(kind, prefix, frame) == Carried::WHOLE ? CarryHeld() : Carried::FAILED;
    }
    return damage ? Inflict(*damage, prefix, frame) : road_.Carry(kind, prefix, frame);
}

Carried FaultyRoad::CarryHeld()
{
    const ByteView prefix{held_.data(), PREFIX_BYTES};
    const ByteView frame{held_.data() + PREFIX_BYTES, held_.size() - PREFIX_BYTES};
    const Carried carried = road_.Carry(FrameKind::STREAM, prefix, frame);
    held_.clear();
    return carried;
}

// A frame of another stream: its kind, or else its number, says so.
Carried FaultyRoad::CarryForeign()
{
    constexpr uint32_t foreignKind = 15;
    const auto distance = static_cast<uint32_t>(FrameOrder::NUMBERS / 4 + plan_.Random(FrameOrder::NUMBERS / 2));
    const auto sequence = static_cast<uint32_t>((frames_ + distance) % FrameOrder::NUMBERS);
    const uint32_t kind = plan_.Random(2) == 0 ? foreignKind : static_cast<uint32_t>(FrameKind::STREAM);
    ChannelProtocol frame;
    if (!frame.Create(static_cast<int>(HeaderValue(kind, sequence)), 0)) {
        errno = ENOMEM;
        return Carried::FAILED;
    }
    std::array<uint8_t, PREFIX_BYTES> prefix = PrefixOf(frame);
    return road_.Carry(FrameKind::STREAM, {prefix.data(), prefix.size()},
                       {frame.GetBuffer(), static_cast<size_t>(frame.GetBufferSize())});
}

Carried FaultyRoad::Inflict(Damage damage, ByteView prefix, ByteView frame)
{
    constexpr FrameKind kind = FrameKind::STREAM;
    ++done_[damage];
    Carried carried = Carried::WHOLE;
    switch (damage) {
        case Damage::FLIPPED: {
            const size_t bit = plan_.Random((prefix.size + frame.size) * 8);
            uint8_t *part = bit / 8 < prefix.size ? prefix.data : frame.data - prefix.size;
            part[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
            carried = road_.Carry(kind, prefix, frame);
            break;
        }
        case Damage::CUT: {
            const size_t size = 1 + plan_.Random(prefix.size + frame.size - 1);
            prefix.size = std::min(size, prefix.size);
            carried = road_.Carry(kind, prefix, {frame.data, size - prefix.size});
            break;
        }
        case Damage::EMPTY:
            carried = road_.Carry(kind, {}, {});
            break;
        case Damage::TOO_LONG:
            std::copy_n(frame.data, std::min(frame.size, tooLong_.size()), tooLong_.data());
            carried = road_.Carry(kind, prefix, {tooLong_.data(), MAX_MESSAGE_BYTES + plan_.Random(MAX_MESSAGE_BYTES)});
            break;
        case Damage::LATE:
            held_.assign(prefix.data, prefix.data + prefix.size);
            held_.insert(held_.end(), frame.data, frame.data + frame.size);
            break;
        case Damage::REPEATED:
            carried = road_.Carry(kind, prefix, frame);
            return carried == Carried::WHOLE ? road_.Carry(kind, prefix, frame) : carried;
        case Damage::FOREIGN:
            carried = CarryForeign();
            return carried == Carried::WHOLE ? road_.Carry(kind, prefix, frame) : carried;
    }
    return carried == Carried::WHOLE ? Carried::SPOILT : carried;
}

bool FaultyRoad::IsHolding() const
{
    return !held_.empty();
}

const DamageCount &FaultyRoad::Done() const
{
    return done_;
}

uint64_t FaultyRoad::Left() const
{
    return plan_.Left() + (flippedFrame_ ? 1 : 0);
}
