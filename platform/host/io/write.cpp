// SPDX-License-Identifier: Apache-2.0

#include "io/write.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace ostra::host {
namespace {

// Blocks SIGPIPE in the calling thread. The destructor discards a SIGPIPE that the write raised, and restores the mask
// and errno. Leaves the disposition of the signal, which belongs to the program, unchanged.
class BrokenPipeGuard {
public:
    BrokenPipeGuard()
    {
        sigset_t pending;
        sigemptyset(&brokenPipe_);
        sigaddset(&brokenPipe_, SIGPIPE);
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) != 0;
        pthread_sigmask(SIG_BLOCK, &brokenPipe_, &mask_);
        errno = 0;  // so that the destructor sees the error of the write
    }

    ~BrokenPipeGuard()
    {
        constexpr timespec noWait{};
        if (errno == EPIPE && !wasPending_) {
            sigtimedwait(&brokenPipe_, nullptr, &noWait);
        }
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
        errno = savedErrno_;
    }

    BrokenPipeGuard(const BrokenPipeGuard &) = delete;
    BrokenPipeGuard &operator=(const BrokenPipeGuard &) = delete;

private:
    const int savedErrno_ = errno;
    sigset_t brokenPipe_{};
    sigset_t mask_{};
    bool wasPending_ = false;
};

}  // namespace

ssize_t WriteOnce(int descriptor, std::string_view data)
{
    const BrokenPipeGuard guard;
    ssize_t written = 0;
    do {
        written = write(descriptor, data.data(), data.size());
    } while (written < 0 && errno == EINTR);
    return written;
}

}  // namespace ostra::host
