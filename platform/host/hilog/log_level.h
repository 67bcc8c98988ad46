// SPDX-License-Identifier: Apache-2.0
//
// Decides which delivered messages are written to standard error. HiLogIsLoggable (hilog/log_c.h) decides which
// messages are delivered.

#ifndef HOST_HILOG_LOG_LEVEL_H
#define HOST_HILOG_LOG_LEVEL_H

#include "hilog/log_c.h"

namespace ostra::host {

/// Returns whether OSTRA_HOST_LOG_LEVEL allows messages of this level on standard error. Thread-safe.
bool IsLevelWritten(LogLevel level);

}  // namespace ostra::host

#endif  // HOST_HILOG_LOG_LEVEL_H
