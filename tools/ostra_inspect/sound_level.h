// SPDX-License-Identifier: Apache-2.0
//
// Measures a stream of samples piece by piece: levels, clipping, silence and the outline of its wave.

#ifndef TOOLS_SOUND_LEVEL_H
#define TOOLS_SOUND_LEVEL_H

#include <cstdint>
#include <string>
#include <vector>

// Samples are signed 32-bit values in which those of fewer bits fill the upper ones.
class SoundLevel {
public:
    struct Extent {
        double low = 0;
        double high = 0;
    };
    struct Channel {
        double peak = 0;  // of 1, which is full scale
        double squares = 0;
        int64_t clipped = 0;  // samples at either end of the range
        std::vector<Extent> outline;
    };

    // For so many frames in all, whose outline is `columns` wide.
    SoundLevel(int channels, int bits, int64_t frames, int columns);

    // Takes whole frames, channel after channel.
    void Add(const std::vector<int> &samples, int64_t frames);

    int64_t Frames() const;
    const std::vector<Channel> &Channels() const;
    double Rms(const Channel &channel) const;  // of 1

    // Frames in which no channel exceeds -60 dB of full scale, and the longest stretch of them.
    int64_t SilentFrames() const;
    int64_t LongestSilence() const;
    int64_t LongestSilenceBegin() const;

private:
    void AddSample(Channel &channel, int sample, size_t column) const;
    void CountSilence(bool isSilent);

    std::vector<Channel> channels_;
    int bits_;
    int64_t expected_;
    int64_t frames_ = 0;
    int64_t silent_ = 0;
    int64_t stretch_ = 0;
    int64_t longest_ = 0;
    int64_t longestEnd_ = 0;
};

// The outline as half blocks, `rows` lines high.
std::string Waveform(const std::vector<SoundLevel::Extent> &outline, int rows);

#endif  // TOOLS_SOUND_LEVEL_H
