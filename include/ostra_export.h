/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * Marks the functions that the shared library exports. Compiles as C and C++.
 *
 * Everything else has hidden visibility. Exported functions must also be listed in the version script
 * libostra_adapter_utils.map.
 */

#ifndef OSTRA_EXPORT_H
#define OSTRA_EXPORT_H

/** Gives default visibility to the function whose declaration follows. */
#define OSTRA_EXPORT __attribute__((visibility("default")))

#endif /* OSTRA_EXPORT_H */
