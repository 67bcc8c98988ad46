/* SPDX-License-Identifier: Apache-2.0
 *
 * OSTRA_EXPORT marks what the shared library shows to its users. Everything else is built hidden; the version script
 * libostra_adapter_utils.map holds the exported interface to the library's namespace and its plain-name entries.
 * A C compiler accepts this header.
 */

#ifndef OSTRA_EXPORT_H
#define OSTRA_EXPORT_H

/* Stands before each function that the library shows. */
#define OSTRA_EXPORT __attribute__((visibility("default")))

#endif /* OSTRA_EXPORT_H */
