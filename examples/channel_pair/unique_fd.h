// SPDX-License-Identifier: Apache-2.0
//
// A file descriptor that is closed when its owner goes.

#ifndef EXAMPLES_UNIQUE_FD_H
#define EXAMPLES_UNIQUE_FD_H

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <utility>

class UniqueFd {
public:
    explicit UniqueFd(int fd = -1) : fd_(fd)
    {
    }
    UniqueFd(UniqueFd &&other) noexcept : fd_(std::exchange(other.fd_, -1))
    {
    }
    UniqueFd &operator=(UniqueFd &&other) noexcept
    {
        Close();
        fd_ = std::exchange(other.fd_, -1);
        return *this;
    }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;
    ~UniqueFd()
    {
        Close();
    }

    int Get() const
    {
        return fd_;
    }

    bool IsOpen() const
    {
        return fd_ >= 0;
    }

    // Returns false, with the reason in errno, when the last bytes could not be stored.
    bool Close()
    {
        const int fd = std::exchange(fd_, -1);
        return fd < 0 || close(fd) == 0;
    }

private:
    int fd_;
};

// Writes all bytes. Returns false with the reason in errno.
inline bool WriteAll(int fd, const void *data, size_t size)
{
    const auto *bytes = static_cast<const uint8_t *>(data);
    while (size > 0) {
        const ssize_t written = write(fd, bytes, size);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        const auto count = static_cast<size_t>(written < 0 ? 0 : written);
        bytes += count;
        size -= count;
    }
    return true;
}

#endif  // EXAMPLES_UNIQUE_FD_H
