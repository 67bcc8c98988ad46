// SPDX-License-Identifier: Apache-2.0

#include "input.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>

namespace {

constexpr uint32_t TONE_SECONDS = 5;
constexpr uint32_t PIECES_PER_SECOND = 1000 / PIECE_MS;
constexpr size_t PIECES_PER_READ = 16;

}  // namespace

bool StreamInput::Open(const PairOptions &options)
{
    if (options.inputPath.empty()) {
        char name[64];
        std::snprintf(name, sizeof(name), "a tone of %g s", options.seconds.value_or(TONE_SECONDS));
        name_ = name;
        length_.seconds = options.seconds;
        if (!options.seconds) {
            length_.pieces = TONE_SECONDS * PIECES_PER_SECOND;
        }
        MakeTone();
        return true;
    }
    const bool isStandardInput = options.inputPath == "-";
    name_ = isStandardInput ? "standard input" : options.inputPath;
    file_ = UniqueFd(isStandardInput ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                     : open(name_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    if (!file_.IsOpen() || fstat(file_.Get(), &status) != 0) {
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    isPolled_ = !S_ISREG(status.st_mode);
    const off_t position = isPolled_ ? 0 : lseek(file_.Get(), 0, SEEK_CUR);
    // Files that the kernel makes up have the size 0 and content all the same.
    if (!isPolled_ && status.st_size > 0) {
        const auto left = static_cast<uint64_t>(std::max<off_t>(status.st_size - position, 0));
        length_.pieces = (left + PIECE_BYTES - 1) / PIECE_BYTES;
    }
    buffer_.resize(PIECES_PER_READ * PIECE_BYTES);
    return true;
}

// One second of 440 Hz on the left and 660 Hz on the right: whole periods, so that it can be repeated.
void StreamInput::MakeTone()
{
    constexpr double amplitude = 12000;
    constexpr double frequencies[CHANNELS] = {440, 660};
    constexpr double fullTurn = 2 * 3.14159265358979323846;
    for (uint32_t i = 0; i < SAMPLE_RATE; ++i) {
        for (const double frequency : frequencies) {
            const double phase = fullTurn * frequency * i / SAMPLE_RATE;
            const auto sample = static_cast<int16_t>(std::lround(amplitude * std::sin(phase)));
            buffer_.push_back(static_cast<uint8_t>(sample & 0xFF));
            buffer_.push_back(static_cast<uint8_t>(static_cast<uint16_t>(sample) >> 8));
        }
    }
}

StreamInput::Result StreamInput::NextOfTone(ByteView &piece)
{
    const auto now = std::chrono::steady_clock::now();
    start_ = pieces_ == 0 ? now : start_;
    const std::chrono::duration<double> elapsed = now - start_;
    if (length_.seconds ? elapsed.count() >= *length_.seconds : pieces_ == *length_.pieces) {
        return Result::END;
    }
    piece = {buffer_.data() + pieces_++ % PIECES_PER_SECOND * PIECE_BYTES, PIECE_BYTES};
    return Result::PIECE;
}

bool StreamInput::IsReadable(int link, int quietMs) const
{
    pollfd waited[] = {{file_.Get(), POLLIN, 0}, {link, POLLRDHUP, 0}};
    return poll(waited, 2, quietMs) > 0 && waited[0].revents != 0;
}

// Reads behind the unread bytes, which it moves to the front.
StreamInput::Result StreamInput::Fill()
{
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
              buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
    end_ -= begin_;
    begin_ = 0;
    const ssize_t count = read(file_.Get(), buffer_.data() + end_, buffer_.size() - end_);
    if (count < 0) {
        return errno == EINTR || errno == EAGAIN ? Result::QUIET : Result::FAILED;
    }
    end_ += static_cast<size_t>(count);
    return count == 0 ? Result::END : Result::PIECE;
}

StreamInput::Result StreamInput::Next(ByteView &piece, int link, int quietMs)
{
    if (!file_.IsOpen()) {
        return NextOfTone(piece);
    }
    while (end_ - begin_ < PIECE_BYTES) {
        if (isPolled_ && !IsReadable(link, quietMs)) {
            return Result::QUIET;
        }
        const Result result = Fill();
        if (result == Result::END && end_ > 0) {
            break;
        }
        if (result != Result::PIECE) {
            return result;
        }
    }
    piece = {buffer_.data() + begin_, std::min<size_t>(end_ - begin_, PIECE_BYTES)};
    begin_ += piece.size;
    return Result::PIECE;
}

const StreamLength &StreamInput::Length() const
{
    return length_;
}

const std::string &StreamInput::Name() const
{
    return name_;
}

int StreamInput::Descriptor() const
{
    return file_.Get();
}
