// SPDX-License-Identifier: Apache-2.0
//
// For code that caches the value of a parameter.

#ifndef HOST_PARAMETER_PARAMETER_CHANGES_H
#define HOST_PARAMETER_PARAMETER_CHANGES_H

#include <cstdint>

namespace ostra::host {

/// Returns how often parameters of this process were set: a cached value is valid while this number is unchanged.
/// Thread-safe, and as cheap as reading an integer.
uint64_t CountParameterChanges();

}  // namespace ostra::host

#endif  // HOST_PARAMETER_PARAMETER_CHANGES_H
