// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sndfile.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "input.h"
#include "sound_level.h"
#include "subjects.h"

namespace {

constexpr int BITS_PER_BYTE = 8;
constexpr int WAVEFORM_ROWS = 7;
constexpr int64_t PIECE_FRAMES = 4096;

using SoundFile = std::unique_ptr<SNDFILE, decltype(&sf_close)>;

struct SampleForm {
    int bits;
    int format;  // of libsndfile
    const char *soxEncoding;
};
constexpr SampleForm FORMS[] = {
    {8, SF_FORMAT_PCM_U8, "unsigned-integer"},
    {16, SF_FORMAT_PCM_16, "signed-integer"},
    {24, SF_FORMAT_PCM_24, "signed-integer"},
    {32, SF_FORMAT_PCM_32, "signed-integer"},
};

const SampleForm &FormOf(int bits)
{
    return *std::find_if(std::begin(FORMS), std::end(FORMS) - 1,
                         [bits](const SampleForm &form) { return form.bits == bits; });
}

// The dump as a descriptor that can be read from its start any number of times; it ends with the process.
int OpenDump(const DumpOptions &options)
{
    const bool isStandardInput = options.path == "-";
    const int descriptor = isStandardInput ? STDIN_FILENO : open(options.path.c_str(), O_RDONLY);
    struct stat status {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) {
        throw InputError(options.path + ": " + std::strerror(errno));
    }
    if (S_ISREG(status.st_mode)) {
        return descriptor;
    }
    const std::string bytes = ReadFile(options.path);
    FILE *const copy = std::tmpfile();
    if (copy == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), copy) != bytes.size() || std::fflush(copy) != 0) {
        throw InputError(std::string("a copy of the input: ") + std::strerror(errno));
    }
    rewind(copy);
    return fileno(copy);
}

SoundFile OpenWav(const DumpOptions &options, int dump)
{
    SF_INFO info{};
    info.samplerate = options.rate;
    info.channels = options.channels;
    info.format = SF_FORMAT_WAV | FormOf(options.bits).format;
    struct stat input {};
    struct stat output {};
    if (fstat(dump, &input) == 0 && stat(options.wavPath.c_str(), &output) == 0 && input.st_dev == output.st_dev &&
        input.st_ino == output.st_ino) {
        throw InputError(options.wavPath + ": is the dump itself");
    }
    SoundFile wav(sf_open(options.wavPath.c_str(), SFM_WRITE, &info), &sf_close);
    if (wav == nullptr) {
        throw InputError(options.wavPath + ": " + sf_strerror(nullptr));
    }
    return wav;
}

// Reads the whole dump once, for its levels and into the WAV file.
SoundLevel Measure(const DumpOptions &options, int dump, int64_t frames, int columns)
{
    SF_INFO info{};
    info.samplerate = options.rate;
    info.channels = options.channels;
    info.format = SF_FORMAT_RAW | SF_ENDIAN_LITTLE | FormOf(options.bits).format;
    const SoundFile input(sf_open_fd(dump, SFM_READ, &info, SF_FALSE), &sf_close);
    if (input == nullptr) {
        throw InputError(options.path + ": " + sf_strerror(nullptr));
    }
    const SoundFile wav = options.wavPath.empty() ? SoundFile(nullptr, &sf_close) : OpenWav(options, dump);
    SoundLevel level(options.channels, options.bits, frames, columns);
    std::vector<int> samples(static_cast<size_t>(PIECE_FRAMES * options.channels));
    for (int64_t left = frames; left > 0;) {
        const sf_count_t count = sf_readf_int(input.get(), samples.data(), std::min(left, PIECE_FRAMES));
        if (count <= 0) {
            throw InputError(options.path + ": it became shorter while it was read");
        }
        level.Add(samples, count);
        left -= count;
        if (wav != nullptr && sf_writef_int(wav.get(), samples.data(), count) != count) {
            throw InputError(options.wavPath + ": " + sf_strerror(wav.get()));
        }
    }
    return level;
}

void DrawImage(const DumpOptions &options, int dump)
{
    const std::string input = "/dev/fd/" + std::to_string(dump);
    const std::string rate = std::to_string(options.rate);
    const std::string channels = std::to_string(options.channels);
    const std::string bits = std::to_string(options.bits);
    const char *const arguments[] = {"sox",
                                     "-t",
                                     "raw",
                                     "-r",
                                     rate.c_str(),
                                     "-c",
                                     channels.c_str(),
                                     "-b",
                                     bits.c_str(),
                                     "-L",
                                     "-e",
                                     FormOf(options.bits).soxEncoding,
                                     input.c_str(),
                                     "-n",
                                     "spectrogram",
                                     "-o",
                                     options.imagePath.c_str(),
                                     nullptr};
    pid_t sox = -1;
    const int error = posix_spawnp(&sox, arguments[0], nullptr, nullptr, const_cast<char **>(arguments), environ);
    if (error != 0) {
        const std::string reason = error == ENOENT ? "sox is not installed" : std::strerror(error);
        throw InputError(options.imagePath + ": " + reason);
    }
    int status = 0;
    if (waitpid(sox, &status, 0) != sox || status != 0) {
        throw InputError(options.imagePath + ": sox could not draw it");
    }
}

int TerminalColumns()
{
    constexpr int usual = 80;
    winsize size{};
    const bool isTerminal = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isTerminal ? size.ws_col : usual;
}

std::string Fixed(const char *format, double value)
{
    char text[64];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

void AddLevel(Report &report, const std::string &name, double level)
{
    if (level <= 0) {
        report.Add(name, Report::Value(), "silent");
        return;
    }
    const double decibels = 20 * std::log10(level);
    report.Add(name, decibels, Fixed("%.1f", decibels));
}

Report ChannelReport(const SoundLevel &level, const SoundLevel::Channel &channel, size_t number)
{
    Report report("channel_" + std::to_string(number));
    AddLevel(report, "peak_dB", channel.peak);
    AddLevel(report, "rms_dB", level.Rms(channel));
    report.Add("clipped", channel.clipped);
    Report picture("waveform", Report::Shape::PICTURE);
    picture.shown = Waveform(channel.outline, WAVEFORM_ROWS);
    report.Add(std::move(picture));
    return report;
}

Report SilenceReport(const SoundLevel &level, double rate)
{
    const auto seconds = [rate](int64_t frames) {
        return static_cast<double>(frames) / rate;
    };
    Report report("silence");
    report.Add("seconds", seconds(level.SilentFrames()));
    report.Add("longest", seconds(level.LongestSilence()));
    report.Add("longest_begin", seconds(level.LongestSilenceBegin()));
    report.shown = Fixed("%.3f s", seconds(level.SilentFrames()));
    if (level.LongestSilence() > 0) {
        report.shown += Fixed(", the longest %.3f s", seconds(level.LongestSilence())) +
                        Fixed(" from %.3f s on", seconds(level.LongestSilenceBegin()));
    }
    return report;
}

}  // namespace

Finding InspectDump(const DumpOptions &options)
{
    const int dump = OpenDump(options);
    struct stat status {};
    fstat(dump, &status);
    const int64_t frameSize = int64_t{options.channels} * options.bits / BITS_PER_BYTE;
    const int64_t frames = status.st_size / frameSize;
    const SoundLevel level = Measure(options, dump, frames, TerminalColumns() - static_cast<int>(sizeof("    ")));
    if (!options.imagePath.empty()) {
        DrawImage(options, dump);
    }
    Finding finding;
    Report &report = finding.report;
    report.Add("bytes", status.st_size);
    report.Add("frames", frames);
    const double seconds = static_cast<double>(frames) / options.rate;
    report.Add("seconds", seconds, Fixed("%.3f", seconds));
    report.Add("rate", options.rate);
    report.Add("bits", options.bits);
    for (size_t i = 0; frames > 0 && i < level.Channels().size(); ++i) {
        report.Add(ChannelReport(level, level.Channels()[i], i + 1));
    }
    report.Add(SilenceReport(level, options.rate));
    Report warnings("warnings", Report::Shape::LIST);
    if (status.st_size % frameSize != 0) {
        warnings.Add("", "the end is no whole frame: " + std::to_string(status.st_size % frameSize) + " of " +
                             std::to_string(frameSize) + " bytes");
    }
    if (frames == 0) {
        warnings.Add("", "there is no sound in it");
    }
    report.Add(std::move(warnings));
    return finding;
}
