/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * The version of these headers, for the preprocessor. Compiles as C and C++.
 *
 *     #if OSTRA_VERSION_NUMBER >= 200 // 0.2.0 or later
 *
 * While the major version is 0, each minor version may change the interface incompatibly. On the host the SONAME of the
 * library therefore contains the minor version (libostra_adapter_utils.so.0.1).
 */

#ifndef OSTRA_VERSION_H
#define OSTRA_VERSION_H

/** Incremented for incompatible changes to the interface, from version 1.0.0 on. */
#define OSTRA_VERSION_MAJOR 0
/** Incremented for additions; while the major version is 0, also for incompatible changes. */
#define OSTRA_VERSION_MINOR 1
/** Incremented for fixes. */
#define OSTRA_VERSION_PATCH 0

/** The version as a string. */
#define OSTRA_VERSION "0.1.0"

/** The version as a number for comparisons: 10000 * major + 100 * minor + patch. */
#define OSTRA_VERSION_NUMBER (10000 * OSTRA_VERSION_MAJOR + 100 * OSTRA_VERSION_MINOR + OSTRA_VERSION_PATCH)

#endif /* OSTRA_VERSION_H */
