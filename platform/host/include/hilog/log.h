// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// HiLog on the host: the C interface and, for a C++ compiler, the C++ interface. A file that logs with the macros
/// defines its domain and tag before it includes this header:
///
///     #define LOG_DOMAIN 0xD004160
///     #define LOG_TAG "SINK"
///     #include "hilog/log.h"
///     HILOG_INFO(LOG_CORE, "%{public}d frames from %{private}s", count, name);

#ifndef HOST_HILOG_LOG_H
#define HOST_HILOG_LOG_H

#include "hilog/log_c.h"  // IWYU pragma: export
#ifdef __cplusplus
#include "hilog/log_cpp.h"  // IWYU pragma: export
#endif

#endif  // HOST_HILOG_LOG_H
