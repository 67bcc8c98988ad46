// SPDX-License-Identifier: Apache-2.0
//
// Tells those who keep the value of a parameter when to read it anew.

#ifndef HOST_PARAMETER_CHANGES_H
#define HOST_PARAMETER_CHANGES_H

#include <cstdint>

// How often a parameter of this process was set. Thread-safe, and as cheap as reading a number.
uint64_t CountParameterChanges();

#endif  // HOST_PARAMETER_CHANGES_H
