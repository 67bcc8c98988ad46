/* SPDX-License-Identifier: Apache-2.0
 *
 * Calls the six C entry points from a C source file, which also checks that a C compiler accepts their headers. */

#define _POSIX_C_SOURCE 200112L
#include <stdio.h>
#include <unistd.h>

#include "ostra_dump_adapter.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar_adapter.h"
#include "ostra_version.h"

/* Returns what failed, or a null pointer. */
const char *CallFromC(void)
{
    const int32_t tid = (int32_t)getpid(); /* of the main thread */
    const int32_t level = 2;
    if (SetQos(level, tid) != 0) {
        return "SetQos refuses a valid level";
    }
    if (SetQos(99, tid) != -1) {
        return "SetQos accepts a level that the platform does not have";
    }
    if (ResetQos(tid) != 0) {
        return "ResetQos refuses this thread";
    }
    if (ResetQos(-1) != -1) {
        return "ResetQos accepts an invalid thread id";
    }
    RequestAuth("4711"); /* no result: the call links and returns */
    DumpStreamData("never_written", (const unsigned char *)"x", 1);
    if (access("/data/local/tmp/never_written", F_OK) == 0) {
        return "DumpStreamData writes a file while dumps are off";
    }
    RadarWrite("main", 0, "dsoftbus");
    UpdateRes("main", 1, "dsoftbus");

    int major = 0;
    int minor = 0;
    int patch = 0;
    if (sscanf(OSTRA_VERSION, "%d.%d.%d", &major, &minor, &patch) != 3 ||
        OSTRA_VERSION_NUMBER != major * 10000 + minor * 100 + patch) {
        return "OSTRA_VERSION and OSTRA_VERSION_NUMBER differ";
    }
    return NULL;
}
