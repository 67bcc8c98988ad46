// SPDX-License-Identifier: Apache-2.0

#include "input.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>

#include "report.h"

namespace {

constexpr uint32_t TONE_SECONDS = 5;
constexpr uint32_t CHUNKS_PER_SECOND = 1000 / CHUNK_MS;

}  // namespace

bool Input::Open(const PairOptions &options)
{
    if (options.inputPath.empty()) {
        length_.seconds = options.seconds;
        name_ = "a generated tone for " + FormatSeconds(options.seconds.value_or(0));
        if (!options.seconds) {
            length_.chunks = TONE_SECONDS * CHUNKS_PER_SECOND;
            name_ = FormatSeconds(TONE_SECONDS) + " of a generated tone";
        }
        GenerateTone();
        return true;
    }
    const bool isStandardInput = options.inputPath == STANDARD_STREAM;
    name_ = isStandardInput ? "standard input" : options.inputPath;
    fd_ = isStandardInput ? STDIN_FILENO : open(name_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    struct stat status {};
    if (fd_ < 0 || fstat(fd_, &status) != 0) {
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    isPolled_ = !S_ISREG(status.st_mode);
    // Files in /proc have size 0 even if they have content.
    if (!isPolled_ && status.st_size > 0) {
        const off_t remaining = std::max<off_t>(status.st_size - lseek(fd_, 0, SEEK_CUR), 0);
        length_.chunks = (static_cast<uint64_t>(remaining) + CHUNK_BYTES - 1) / CHUNK_BYTES;
    }
    buffer_.resize(CHUNK_BYTES);
    return true;
}

// One second of 440 Hz on the left and 660 Hz on the right: whole periods, so it can be repeated without a click.
void Input::GenerateTone()
{
    constexpr double amplitude = 12000;
    constexpr double twoPi = 6.283185307179586;
    for (uint32_t i = 0; i < SAMPLE_RATE; ++i) {
        for (const double frequency : {440, 660}) {
            const double phase = twoPi * frequency * i / SAMPLE_RATE;
            const auto sample = static_cast<uint16_t>(std::lround(amplitude * std::sin(phase)));
            buffer_.push_back(static_cast<uint8_t>(sample));
            buffer_.push_back(static_cast<uint8_t>(sample >> 8));
        }
    }
}

Input::Result Input::NextToneChunk(ByteView &chunk)
{
    const auto now = std::chrono::steady_clock::now();
    start_ = chunks_ == 0 ? now : start_;
    const std::chrono::duration<double> elapsed = now - start_;
    if (length_.seconds ? elapsed.count() >= *length_.seconds : chunks_ == *length_.chunks) {
        return Result::END;
    }
    chunk = {buffer_.data() + chunks_++ % CHUNKS_PER_SECOND * CHUNK_BYTES, CHUNK_BYTES};
    return Result::CHUNK;
}

Input::Result Input::Next(ByteView &chunk, int idleMs)
{
    if (fd_ < 0) {
        return NextToneChunk(chunk);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(idleMs);
    while (filled_ < buffer_.size()) {
        pollfd wait{fd_, POLLIN, 0};
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (isPolled_ && poll(&wait, 1, std::max(static_cast<int>(rest.count()), 0)) <= 0) {
            return Result::IDLE;
        }
        const ssize_t count = read(fd_, buffer_.data() + filled_, buffer_.size() - filled_);
        if (count < 0) {
            return errno == EINTR || errno == EAGAIN ? Result::IDLE : Result::FAILED;
        }
        if (count == 0) {
            break;
        }
        filled_ += static_cast<size_t>(count);
    }
    chunk = {buffer_.data(), std::exchange(filled_, 0)};
    return chunk.size > 0 ? Result::CHUNK : Result::END;
}
