// SPDX-License-Identifier: Apache-2.0
//
// Logs a message with a masked identifier, dumps a stream and reports an event. Run it on the host with
// OSTRA_HOST_EVENT_OUTPUT=stderr to see the event.

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

    // On a device, an engineer sets the parameter from a shell.
    SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "w");
    OstraDump &dump = OstraDump::GetInstance();
    dump.Init();
    const unsigned char chunk[] = {0x01, 0x02, 0x03};
    dump.DumpStreamData("first_diagnostics.pcm", chunk, sizeof(chunk));  // in /data/local/tmp/
    dump.UnInit();

    OstraRadar &radar = OstraRadar::GetInstance();
    radar.SetCurBusinessId(2);
    const bool isReported = radar.AudioOpenRes(__func__, 0);
    // Prints: AudioOpenRes reported by collaboration_service
    std::printf("AudioOpenRes %s by %s\n", isReported ? "reported" : "rejected", radar.GetProcessName().c_str());
    return isReported ? 0 : 1;
}
