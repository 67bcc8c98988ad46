// SPDX-License-Identifier: Apache-2.0

#include "stream_dump.h"

#include <unistd.h>

#include <filesystem>

#include "ostra_dump.h"
#include "ostra_dump_adapter.h"
#include "parameter.h"

using OHOS::DistributedHardware::OstraAdapter::DUMP_PATH_PREFIX;
using OHOS::DistributedHardware::OstraAdapter::DUMP_WRITE_ENABLE_KEY;
using OHOS::DistributedHardware::OstraAdapter::OstraDump;

StreamDump::StreamDump(bool isWanted) : fileName_("channel_pair_" + std::to_string(getpid()) + ".pcm")
{
    if (isWanted) {
        SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "a");
    }
    OstraDump &dump = OstraDump::GetInstance();
    dump.Init();
    std::string mode;
    isOn_ = dump.GetSysPara(DUMP_WRITE_ENABLE_KEY.c_str(), mode);
}

StreamDump::~StreamDump()
{
    OstraDump::GetInstance().UnInit();
}

void StreamDump::Write(const std::vector<uint8_t> &piece) const
{
    if (isOn_) {
        DumpStreamData(fileName_.c_str(), piece.data(), static_cast<int>(piece.size()));
    }
}

void StreamDump::AddRows(Summary &summary) const
{
    if (!isOn_) {
        return;
    }
    std::error_code error;
    const std::string path = DUMP_PATH_PREFIX + fileName_;
    const uintmax_t size = std::filesystem::file_size(path, error);
    summary.Row("dump", path + (error ? ": " + error.message() : ", " + std::to_string(size) + " bytes"));
}
