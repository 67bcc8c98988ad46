// SPDX-License-Identifier: Apache-2.0
//
// Opens the files that the host platform's environment variables name.

#ifndef HOST_ENVIRONMENT_FILE_H
#define HOST_ENVIRONMENT_FILE_H

// Opens `path`, the value of `variable`, with the flags of open(). Never waits: a FIFO is refused, and so is a
// directory. Returns the descriptor, or -1 after one line on standard error that says why.
int OpenEnvironmentFile(const char *variable, const char *path, int flags);

#endif  // HOST_ENVIRONMENT_FILE_H
