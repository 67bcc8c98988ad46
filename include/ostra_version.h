/* SPDX-License-Identifier: Apache-2.0
 *
 * The version of these headers, for the preprocessor, in C and C++:
 *
 *     #if OSTRA_VERSION_NUMBER >= 200 // 0.2.0 or later
 *
 * While the major version is 0, a new minor version may change the interface; the name of the host's shared library
 * says so (libostra_adapter_utils.so.0.1). A C compiler accepts this header.
 */

#ifndef OSTRA_VERSION_H
#define OSTRA_VERSION_H

#define OSTRA_VERSION_MAJOR 0
#define OSTRA_VERSION_MINOR 1
#define OSTRA_VERSION_PATCH 0

/* The three as a text. */
#define OSTRA_VERSION "0.1.0"

/* The three as one number that compares as they do: 10000 * major + 100 * minor + patch. */
#define OSTRA_VERSION_NUMBER (10000 * OSTRA_VERSION_MAJOR + 100 * OSTRA_VERSION_MINOR + OSTRA_VERSION_PATCH)

#endif /* OSTRA_VERSION_H */
