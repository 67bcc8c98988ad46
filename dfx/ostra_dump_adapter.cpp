// SPDX-License-Identifier: Apache-2.0

#include "ostra_dump_adapter.h"

#include "ostra_dump.h"

void DumpStreamData(const char *fileName, const unsigned char *data, int size)
{
    OHOS::DistributedHardware::OstraAdapter::OstraDump::GetInstance().DumpStreamData(fileName, data, size);
}
