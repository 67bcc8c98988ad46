/* SPDX-License-Identifier: Apache-2.0 */

#include <stdio.h>

#include "ostra_dump_adapter.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar_adapter.h"

/* All six plain names, from C. */
int main(void)
{
    const int works = SetQos(99, 0) == -1 && ResetQos(-1) == -1;
    RequestAuth("1");
    DumpStreamData("never_written", (const unsigned char *)"x", 1);
    RadarWrite("main", 0, "dsoftbus");
    UpdateRes("main", 0, "dsoftbus");
    puts(works ? "the package works from C" : "the package does NOT work from C");
    return works ? 0 : 1;
}
