// SPDX-License-Identifier: Apache-2.0
//
// Which levels HiLog delivers, and which of these reach standard error.

#ifndef HOST_HILOG_LEVEL_H
#define HOST_HILOG_LEVEL_H

#include "hilog/log_c.h"

// True when OSTRA_HOST_LOG_LEVEL lets a delivered message of this level through to standard error. Thread-safe.
bool IsLevelWritten(LogLevel level);

#endif  // HOST_HILOG_LEVEL_H
