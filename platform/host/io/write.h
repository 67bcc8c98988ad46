// SPDX-License-Identifier: Apache-2.0
//
// Writes lines to standard error and to files on behalf of a program that knows nothing about it.

#ifndef HOST_IO_WRITE_H
#define HOST_IO_WRITE_H

#include <sys/types.h>

#include <string_view>

namespace ostra::host {

/// Writes `data` with one call of write(), so that lines of several threads and processes do not mix. Repeats a call
/// that a signal interrupts, and never ends the process with SIGPIPE. Returns the bytes written, or -1 and sets errno.
ssize_t WriteOnce(int descriptor, std::string_view data);

}  // namespace ostra::host

#endif  // HOST_IO_WRITE_H
