// SPDX-License-Identifier: Apache-2.0

#include <string>
#include <vector>

#include "channel_link.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
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
    const bool isSent = SendOffer(sender, link.offer) && SendStream(sender, input);
    const uint64_t frames = sender.Count().frames;
    if (!isSent) {
        OSTRA_LOGE("sending stopped at frame %llu", static_cast<unsigned long long>(frames));
    }
    const bool isFlipped = !options.flippedFrame || *options.flippedFrame < frames;
    if (!isFlipped) {
        OSTRA_LOGE("frame %llu was to get a flipped bit, but was never sent",
                   static_cast<unsigned long long>(*options.flippedFrame));
    }

    Summary summary("source");
    AddLinkRows(summary, sender.Count(), link.connection.String(), watch.Seconds());
    summary.Print();
    return isSent && isFlipped;
}
