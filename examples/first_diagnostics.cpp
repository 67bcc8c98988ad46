// SPDX-License-Identifier: Apache-2.0
//
// Diagnostics: a message with a masked identifier, a dump of a stream, an event. With OSTRA_HOST_EVENT_OUTPUT=stderr
// the host shows the event as well.

#include <cstdio>

#include "dh_utils_tools.h"
#include "ostra_adapter_log.h"
#include "ostra_dump.h"
#include "ostra_radar.h"
#include "parameter.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

int main()
{
    OSTRA_LOGI("open the microphone of %s", GetAnonyString("192.168.1.10").c_str());  // ... of 1******0

    // On a device an engineer sets the parameter, not the program.
    SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "w");
    OstraDump &dump = OstraDump::GetInstance();
    dump.Init();
    const unsigned char piece[] = {0x01, 0x02, 0x03};
    dump.DumpStreamData("first_diagnostics.pcm", piece, sizeof(piece));  // below /data/local/tmp/
    dump.UnInit();

    OstraRadar &radar = OstraRadar::GetInstance();
    radar.SetCurBusinessId(2);
    const bool isReported = radar.AudioOpenRes(__func__, 0);
    // Prints: AudioOpenRes reported by collaboration_service
    std::printf("AudioOpenRes %s by %s\n", isReported ? "reported" : "refused", radar.GetProcessName().c_str());
    return isReported ? 0 : 1;
}
