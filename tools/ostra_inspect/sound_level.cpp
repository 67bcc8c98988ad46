// SPDX-License-Identifier: Apache-2.0

#include "sound_level.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double FULL_SCALE = 2147483648.0;
constexpr int SAMPLE_BITS = 32;
constexpr double SILENCE = 0.001;  // -60 dB

}  // namespace

SoundLevel::SoundLevel(int channels, int bits, int64_t frames, int columns)
    : channels_(static_cast<size_t>(channels)), bits_(bits), expected_(std::max<int64_t>(frames, 1))
{
    const auto width = static_cast<size_t>(std::min<int64_t>(columns, expected_));
    for (Channel &channel : channels_) {
        channel.outline.resize(width);
    }
}

void SoundLevel::Add(const std::vector<int> &samples, int64_t frames)
{
    const size_t width = channels_.front().outline.size();
    auto sample = samples.begin();
    for (int64_t i = 0; i < frames; ++i, ++frames_) {
        const double place = static_cast<double>(frames_) / static_cast<double>(expected_);
        const size_t column = std::min(static_cast<size_t>(place * static_cast<double>(width)), width - 1);
        bool isSilent = true;
        for (Channel &channel : channels_) {
            isSilent = isSilent && std::fabs(*sample / FULL_SCALE) <= SILENCE;
            AddSample(channel, *sample++, column);
        }
        CountSilence(isSilent);
    }
}

void SoundLevel::AddSample(Channel &channel, int sample, size_t column) const
{
    const double level = sample / FULL_SCALE;
    channel.peak = std::max(channel.peak, std::fabs(level));
    channel.squares += level * level;
    const int64_t step = int64_t{1} << (SAMPLE_BITS - bits_);
    const bool isLargest = sample + step > INT32_MAX;
    channel.clipped += isLargest || sample == INT32_MIN ? 1 : 0;
    Extent &extent = channel.outline[column];
    extent.low = std::min(extent.low, level);
    extent.high = std::max(extent.high, level);
}

void SoundLevel::CountSilence(bool isSilent)
{
    stretch_ = isSilent ? stretch_ + 1 : 0;
    silent_ += isSilent ? 1 : 0;
    if (stretch_ > longest_) {
        longest_ = stretch_;
        longestEnd_ = frames_ + 1;
    }
}

int64_t SoundLevel::Frames() const
{
    return frames_;
}

const std::vector<SoundLevel::Channel> &SoundLevel::Channels() const
{
    return channels_;
}

double SoundLevel::Rms(const Channel &channel) const
{
    return frames_ == 0 ? 0 : std::sqrt(channel.squares / static_cast<double>(frames_));
}

int64_t SoundLevel::SilentFrames() const
{
    return silent_;
}

int64_t SoundLevel::LongestSilence() const
{
    return longest_;
}

int64_t SoundLevel::LongestSilenceBegin() const
{
    return longestEnd_ - longest_;
}

std::string Waveform(const std::vector<SoundLevel::Extent> &outline, int rows)
{
    // By whether the upper and the lower half of a cell are filled.
    constexpr const char *blocks[2][2] = {{" ", "\u2584"}, {"\u2580", "\u2588"}};
    std::string picture;
    for (int row = 0; row < rows; ++row) {
        for (const SoundLevel::Extent &extent : outline) {
            const auto isFilled = [&extent, rows](int half) {
                const double bottom = static_cast<double>(rows - half - 1) / rows;
                const double top = bottom + 1.0 / rows;
                return extent.high >= bottom && extent.low < top;
            };
            picture += blocks[isFilled(2 * row) ? 1 : 0][isFilled(2 * row + 1) ? 1 : 0];
        }
        picture += "\n";
    }
    return picture;
}
