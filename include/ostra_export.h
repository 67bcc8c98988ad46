/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * The mark of exported functions. Compiles as C and C++.
 *
 * Everything else has hidden visibility. The version script libostra_adapter_utils.map limits the exports, too.
 */

#ifndef OSTRA_EXPORT_H
#define OSTRA_EXPORT_H

/** Precedes each function that the shared library exports. */
#define OSTRA_EXPORT __attribute__((visibility("default")))

#endif /* OSTRA_EXPORT_H */
