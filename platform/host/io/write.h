// SPDX-License-Identifier: Apache-2.0
//
// Writes lines to standard error and to files without affecting the signal handling of the program.

#ifndef HOST_IO_WRITE_H
#define HOST_IO_WRITE_H

#include <sys/types.h>

#include <string_view>

namespace ostra::host {

/// Writes `data` with one call of write(), so that lines of different threads and processes do not interleave. Retries
/// a call that a signal interrupts, and never terminates the process with SIGPIPE. Returns the number of bytes written,
/// or -1. Does not change errno.
ssize_t WriteOnce(int descriptor, std::string_view data);

}  // namespace ostra::host

#endif  // HOST_IO_WRITE_H
