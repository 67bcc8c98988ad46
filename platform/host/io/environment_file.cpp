// SPDX-License-Identifier: Apache-2.0

#include "io/environment_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace ostra::host {
namespace {

const char *RejectionReason(int descriptor)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return std::strerror(errno);
    }
    return S_ISFIFO(status.st_mode) ? "Is a FIFO" : S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : nullptr;
}

}  // namespace

int OpenEnvironmentFile(const char *variable, const char *path, int flags)
{
    constexpr mode_t mode = 0644;
    const int descriptor = open(path, flags | O_CLOEXEC | O_NONBLOCK, mode);
    const char *reason = descriptor < 0 ? std::strerror(errno) : RejectionReason(descriptor);
    if (reason == nullptr) {
        return descriptor;
    }
    std::fprintf(stderr, "%s=%s cannot be opened: %s\n", variable, path, reason);
    close(descriptor);  // a no-op for -1
    return -1;
}

}  // namespace ostra::host
