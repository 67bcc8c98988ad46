// SPDX-License-Identifier: Apache-2.0

#include "stream_dump.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "ostra_dump.h"
#include "ostra_dump_adapter.h"
#include "parameter.h"
#include "unique_fd.h"

using OHOS::DistributedHardware::OstraAdapter::DUMP_DIR;
using OHOS::DistributedHardware::OstraAdapter::DUMP_PATH_PREFIX;
using OHOS::DistributedHardware::OstraAdapter::DUMP_WRITE_ENABLE_KEY;
using OHOS::DistributedHardware::OstraAdapter::OstraDump;

namespace {

constexpr char EACH_PIECE_ALONE[] = "w";
constexpr char ALL_PIECES[] = "a";

// Empty for what is no file.
std::optional<uint64_t> SizeOf(const std::string &path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return static_cast<uint64_t>(status.st_size);
}

}  // namespace

StreamDump::StreamDump(bool isWanted)
{
    fileName_ = "channel_pair_" + std::to_string(getpid()) + ".pcm";
    path_ = DUMP_PATH_PREFIX + fileName_;
    if (isWanted) {
        SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), ALL_PIECES);
    }
    OstraDump &dump = OstraDump::GetInstance();
    dump.Init();
    std::string mode;
    if (!dump.GetSysPara(DUMP_WRITE_ENABLE_KEY.c_str(), mode)) {
        return;
    }
    if (access(DUMP_DIR.c_str(), F_OK) != 0) {
        whyOff_ = DUMP_DIR + ": " + std::strerror(errno);
        return;
    }
    mode_ = mode;
    size_ = mode_ == ALL_PIECES ? SizeOf(path_).value_or(0) : 0;
}

StreamDump::~StreamDump()
{
    OstraDump::GetInstance().UnInit();
}

// The library's dump tells its failures by the log alone, so the same is tried again, to hear the reason.
std::string StreamDump::FindReason(ByteView piece) const
{
    if (mode_ != ALL_PIECES && mode_ != EACH_PIECE_ALONE) {
        return "the parameter says neither a nor w: " + mode_;
    }
    UniqueFd file(open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
    if (file.IsOpen() && WriteAll(file.Get(), piece.data, piece.size) && file.Close()) {
        return "not all was written";
    }
    return std::strerror(errno);
}

bool StreamDump::Write(ByteView piece)
{
    if (mode_.empty()) {
        return true;
    }
    DumpStreamData(fileName_.c_str(), piece.data, static_cast<int>(piece.size));
    size_ = mode_ == ALL_PIECES ? size_ + piece.size : piece.size;
    if (SizeOf(path_) == size_) {
        return true;
    }
    failure_ = path_ + ": the dump is cut short: " + FindReason(piece);
    mode_.clear();
    return false;
}

const std::string &StreamDump::Failure() const
{
    return failure_;
}

void StreamDump::AddRows(Summary &summary) const
{
    if (!whyOff_.empty()) {
        summary.Row("dump", "off: " + whyOff_);
    } else if (!failure_.empty()) {
        summary.Row("dump", failure_);
    } else if (!mode_.empty()) {
        summary.Row("dump", path_ + ", " + std::to_string(SizeOf(path_).value_or(0)) + " bytes");
    }
}
