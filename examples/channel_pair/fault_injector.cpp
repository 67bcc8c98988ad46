// SPDX-License-Identifier: Apache-2.0

#include "fault_injector.h"

#include <algorithm>
#include <cmath>
#include <utility>

FaultInjector::FaultInjector(const FaultOptions &options, const StreamLength &length)
    : random_(options.seed), flippedFrame_(options.flippedFrame), isTimed_(length.seconds.has_value())
{
    // The stream is divided into `count` equal parts with one fault in each. If parts are measured in chunks, the last
    // chunk of each part stays intact. A stream of unknown length gets its faults within the first 10 * count chunks.
    constexpr double lastFaultPosition = 0.8;
    const auto count = static_cast<double>(options.count);
    const double span = length.chunks    ? static_cast<double>(*length.chunks)
                        : length.seconds ? *length.seconds * lastFaultPosition
                                         : 10 * count;
    const double maxOffset = isTimed_ ? span / count : std::floor(span / count) - 1;
    for (uint64_t i = 0; i < options.count; ++i) {
        const double begin = static_cast<double>(i) * span / count;
        const double offset = std::uniform_real_distribution<double>(0, std::max(maxOffset, 0.0))(random_);
        const double position = isTimed_ ? begin + offset : std::floor(begin) + std::floor(offset);
        faults_.push_back({position, static_cast<Fault>(i % FAULT_KINDS)});
    }
    for (size_t i = faults_.size(); i > 1; --i) {
        std::swap(faults_[i - 1].fault, faults_[Random(i)].fault);
    }
}

size_t FaultInjector::Random(size_t bound)
{
    return static_cast<size_t>(random_() % bound);
}

bool FaultInjector::IsDue()
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    const double position = isTimed_ ? elapsed.count() : static_cast<double>(chunks_);
    ++chunks_;
    return !IsDelaying() && next_ < faults_.size() && position >= faults_[next_].position;
}

FaultInjector::Output FaultInjector::Inject(FrameKind kind, uint64_t frameNumber, Message message)
{
    if (kind == FrameKind::STREAM && IsDue()) {
        return Apply(faults_[next_++].fault, frameNumber, std::move(message));
    }
    if (flippedFrame_ == frameNumber) {
        flippedFrame_.reset();
        message.back() ^= 1;
    }
    Output output{{std::move(message)}};
    if (IsDelaying()) {
        output.messages.push_back(std::exchange(delayed_, {}));
    }
    return output;
}

FaultInjector::Output FaultInjector::Apply(Fault fault, uint64_t frameNumber, Message message)
{
    constexpr size_t sizeFieldBits = 32;  // a wrong size would be detected as TRUNCATED
    constexpr FrameKind unknownKind{15};
    ++injected_[fault];
    switch (fault) {
        case CORRUPTED: {
            const size_t bit = sizeFieldBits + Random(message.size() * 8 - sizeFieldBits);
            message[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
            break;
        }
        case TRUNCATED:
            message.resize(1 + Random(message.size() - 1));
            break;
        case DUPLICATED:
            return {{message, message}};
        case DELAYED:
            delayed_ = std::move(message);
            return {{}, true};
        case EMPTY:
            message.clear();
            break;
        case OVERSIZED:
            message.resize(MAX_MESSAGE_BYTES + 1 + Random(MAX_MESSAGE_BYTES));
            break;
        case UNEXPECTED: {
            const uint64_t farAway = frameNumber + SEQUENCE_NUMBERS / 4 + Random(SEQUENCE_NUMBERS / 2);
            const FrameKind kind = Random(2) == 0 ? unknownKind : FrameKind::STREAM;
            return {{PackMessage(kind, farAway, {}), std::move(message)}};
        }
    }
    return {{std::move(message)}, true};
}
