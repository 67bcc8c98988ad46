// SPDX-License-Identifier: Apache-2.0

#include <sys/syscall.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include "channel_link.h"
#include "flow_report.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "ostra_qos_adapter.h"
#include "stream_pair.h"
#include "summary.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

bool SendOffer(FrameSender &sender, Offer offer)
{
    std::string device;
    std::vector<uint8_t> service;
    if (offer.device.Marshal(device) != OSTRA_JSON_SUCCESS ||
        offer.service.PackServiceData(service) != OSTRA_JSON_SUCCESS) {
        return false;
    }
    std::vector<uint8_t> deviceBytes(device.begin(), device.end());
    return sender.Send(FrameKind::DEVICE, deviceBytes) && sender.Send(FrameKind::SERVICE, service);
}

bool SendSettings(FrameSender &sender)
{
    const std::map<int32_t, std::string> settings = {{SETTING_SAMPLE_RATE, std::to_string(SAMPLE_RATE)},
                                                     {SETTING_CHANNELS, std::to_string(CHANNELS)},
                                                     {SETTING_PIECE_MS, std::to_string(PIECE_MS)}};
    OHOS::MessageParcel parcel;
    if (!IpcUtils::Marshalling(parcel, settings)) {
        return false;
    }
    const auto *begin = reinterpret_cast<const uint8_t *>(parcel.GetData());  // NOLINT(performance-no-int-to-ptr)
    std::vector<uint8_t> bytes(begin, begin + parcel.GetDataSize());
    return sender.Send(FrameKind::SETTINGS, bytes);
}

// Raises the QoS of the calling thread; a platform that refuses leaves the thread as it is.
class StreamQos {
public:
    StreamQos() : tid_(static_cast<int32_t>(syscall(SYS_gettid)))
    {
        RequestAuth(std::to_string(getpid()).c_str());
        setResult_ = SetQos(STREAM_LEVEL, tid_);
    }

    // Takes it back, and returns what the platform said to both.
    std::string Reset() const
    {
        return "set to level " + std::to_string(STREAM_LEVEL) + ": " + std::to_string(setResult_) +
               ", reset: " + std::to_string(ResetQos(tid_));
    }

private:
    static constexpr int32_t STREAM_LEVEL = 5;
    int32_t tid_;
    int32_t setResult_ = 0;
};

bool SendStream(FrameSender &sender, FILE *input)
{
    Progress progress;
    std::vector<uint8_t> piece(PIECE_BYTES);
    for (;;) {
        piece.resize(std::fread(piece.data(), 1, PIECE_BYTES, input));
        if (piece.empty()) {
            return std::ferror(input) == 0;
        }
        if (!sender.Send(FrameKind::STREAM, piece)) {
            return false;
        }
        progress.Show(sender.Count().bytes);
    }
}

}  // namespace

bool RunSource(const PairLink &link, const PairOptions &options, FILE *input)
{
    FrameSender sender(link.socket, options.flippedFrame);
    const Stopwatch watch;
    FlowReport flow("source");
    const bool isOffered = SendOffer(sender, link.offer) && SendSettings(sender);
    flow.Connected(isOffered ? 0 : -1);
    const StreamQos qos;
    flow.AudioOpened(0);
    const bool isSent = isOffered && SendStream(sender, input);
    flow.AudioClosed(isSent ? 0 : -1);
    const std::string qosResults = qos.Reset();
    const uint64_t frames = sender.Count().frames;
    if (!isSent) {
        OSTRA_LOGE("sending stopped at frame %llu", static_cast<unsigned long long>(frames));
    }
    const bool isFlipped = !options.flippedFrame || *options.flippedFrame < frames;
    if (!isFlipped) {
        OSTRA_LOGE("frame %llu was to get a flipped bit, but was never sent",
                   static_cast<unsigned long long>(*options.flippedFrame));
    }
    flow.Ended(isSent && isFlipped ? 0 : -1);

    Summary summary("source");
    AddLinkRows(summary, sender.Count(), link.connection.String(), watch.Seconds());
    summary.Row("QoS", qosResults);
    flow.AddRows(summary);
    summary.Print();
    return isSent && isFlipped;
}
