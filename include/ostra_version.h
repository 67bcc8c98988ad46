/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * The version of these headers, for the preprocessor. Compiles as C and C++.
 *
 *     #if OSTRA_VERSION_NUMBER >= 200 // 0.2.0 or later
 *
 * While the major version is 0, a new minor version may change the interface; on the host it then has another shared
 * library name (libostra_adapter_utils.so.0.1).
 */

#ifndef OSTRA_VERSION_H
#define OSTRA_VERSION_H

/** Changes with incompatible changes of the interface, from 1 on. */
#define OSTRA_VERSION_MAJOR 0
/** Changes with additions, and while the major version is 0 with incompatible changes. */
#define OSTRA_VERSION_MINOR 1
/** Changes with fixes. */
#define OSTRA_VERSION_PATCH 0

/** The version as a string. */
#define OSTRA_VERSION "0.1.0"

/** The version as a number that can be compared: 10000 * major + 100 * minor + patch. */
#define OSTRA_VERSION_NUMBER (10000 * OSTRA_VERSION_MAJOR + 100 * OSTRA_VERSION_MINOR + OSTRA_VERSION_PATCH)

#endif /* OSTRA_VERSION_H */
