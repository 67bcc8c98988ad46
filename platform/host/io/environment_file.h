// SPDX-License-Identifier: Apache-2.0
//
// Opens the files that the host platform's environment variables name.

#ifndef HOST_IO_ENVIRONMENT_FILE_H
#define HOST_IO_ENVIRONMENT_FILE_H

namespace ostra::host {

/// Opens `path`, the value of `variable`, with the flags of open(). Never blocks: directories and FIFOs are rejected.
/// Returns the descriptor, or -1 after printing the reason to standard error.
int OpenEnvironmentFile(const char *variable, const char *path, int flags);

}  // namespace ostra::host

#endif  // HOST_IO_ENVIRONMENT_FILE_H
