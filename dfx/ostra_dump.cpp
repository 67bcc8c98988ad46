// SPDX-License-Identifier: Apache-2.0

#include "ostra_dump.h"

#include <cstdint>

#include "ostra_adapter_log.h"
#include "parameter.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Copies of DUMP_WRITE_ENABLE_KEY and DUMP_PATH_PREFIX, which may be destroyed before the last call to OstraDump.
constexpr char ENABLE_PARAMETER[] = "sys.ostra.audio.dump.write.enable";
constexpr char PATH_PREFIX[] = "/data/local/tmp/";
constexpr char UNSET_MARKER[] = "-1";
constexpr uint32_t PARAMETER_BUFFER_SIZE = 30;
constexpr size_t MAX_PATH_LENGTH = 50;

}  // namespace

OstraDump &OstraDump::GetInstance()
{
    static auto *const instance = new OstraDump();  // never destroyed: usable until the process ends
    return *instance;
}

void OstraDump::Init()
{
    OSTRA_LOGI("Dump init");
    std::string value;
    if (GetSysPara(ENABLE_PARAMETER, value) && !value.empty()) {
        dumpMode_ = value;
        enable_.exchange(true);
        return;
    }
    OSTRA_LOGW("Audio dump is not enable.");
    enable_.exchange(false);
}

bool OstraDump::GetSysPara(const char *key, std::string &value)
{
    OSTRA_LOGI("Getting system parameter");
    if (key == nullptr) {
        OSTRA_LOGE("key is null.");
        return false;
    }
    char buffer[PARAMETER_BUFFER_SIZE] = {0};
    if (GetParameter(key, UNSET_MARKER, buffer, PARAMETER_BUFFER_SIZE) < 1) {
        OSTRA_LOGE("GetParameter fail. key: %s, res:%s.", key, buffer);
        return false;
    }
    OSTRA_LOGI("GetSysPara key:%s value:%s", key, buffer);
    value = buffer;
    return value != UNSET_MARKER;
}

void OstraDump::UnInit()
{
    OSTRA_LOGI("Dump unInit");
    enable_.exchange(false);
    dumpMode_.clear();
}

void OstraDump::DumpStreamData(const std::string &fileName, const unsigned char *data, int size)
{
    if (data == nullptr || size < 0) {
        OSTRA_LOGE("Iuput param is invalid.");
        return;
    }
    if (!enable_) {
        OSTRA_LOGD("Dump is not enable.");
        return;
    }
    FILE *const file = OpenDumpFile(PATH_PREFIX + fileName);
    if (file == nullptr) {
        return;
    }
    const auto count = static_cast<size_t>(size);
    const bool isWritten = fwrite(data, 1, count, file) == count;
    const bool isClosed = fclose(file) == 0;  // flushes the buffer, which may fail
    if (!isWritten || !isClosed) {
        OSTRA_LOGE("Failed to write the file");
    }
}

FILE *OstraDump::OpenDumpFile(const std::string &path)
{
    if (path.size() > MAX_PATH_LENGTH) {
        return nullptr;
    }
    FILE *file = nullptr;
    if (dumpMode_ == "w") {
        file = fopen(path.c_str(), "wb+");
    } else if (dumpMode_ == "a") {
        file = fopen(path.c_str(), "ab+");
    }
    if (file == nullptr) {
        OSTRA_LOGD("Error openning file: %s.", path.c_str());
    }
    return file;
}

void OstraDump::CloseDumpFile(FILE **file)
{
    if (file == nullptr || *file == nullptr) {
        return;
    }
    static_cast<void>(fclose(*file));
    *file = nullptr;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
