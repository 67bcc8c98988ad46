// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "flow_report.h"
#include "ostra_constants.h"
#include "pair.h"
#include "parcel_map.h"
#include "progress.h"
#include "report.h"
#include "stream_end.h"
#include "stream_qos.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

volatile std::sig_atomic_t g_isInterrupted = 0;

void Interrupt(int /* signal */)
{
    g_isInterrupted = 1;
}

class Source {
public:
    Source(const PairLink &link, const PairOptions &options, StreamInput &input)
        : link_(link),
          options_(options),
          input_(input),
          socketRoad_(link.socket),
          road_(socketRoad_, options.faults, input.Length()),
          sender_(road_)
    {
    }

    bool SendOffer()
    {
        DHOSTRADeviceJson device = link_.offer.device;
        OSTRADeviceService service = link_.offer.service;
        std::string deviceText;
        std::vector<uint8_t> serviceBytes;
        if (device.Marshal(deviceText) != OSTRA_JSON_SUCCESS ||
            service.PackServiceData(serviceBytes) != OSTRA_JSON_SUCCESS) {
            return Fail("the documents cannot be written");
        }
        const ParcelMap settings = {{SETTING_SAMPLE_RATE, std::to_string(SAMPLE_RATE)},
                                    {SETTING_CHANNELS, std::to_string(CHANNELS)},
                                    {SETTING_PIECE_MS, std::to_string(PIECE_MS)}};
        return Send(FrameKind::DEVICE, {reinterpret_cast<uint8_t *>(deviceText.data()), deviceText.size()}) &&
               Send(FrameKind::SERVICE, {serviceBytes.data(), serviceBytes.size()}) &&
               (SendMap(sender_, FrameKind::SETTINGS, settings) || FailToSend());
    }

    bool SendStream()
    {
        constexpr double longestQuiet = 1;
        const auto quietMs = static_cast<int>(std::min(longestQuiet, options_.timeout / 4) * 1000);
        Progress progress(input_.Length());
        uint64_t pieces = 0;
        while (g_isInterrupted == 0) {
            ByteView piece;
            const StreamInput::Result result = input_.Next(piece, link_.socket, quietMs);
            if (result == StreamInput::Result::END) {
                return true;
            }
            if (result == StreamInput::Result::FAILED) {
                return Fail(input_.Name() + ": " + std::strerror(errno));
            }
            if (!Send(result == StreamInput::Result::QUIET ? FrameKind::ALIVE : FrameKind::STREAM, piece)) {
                return false;
            }
            progress.Show(++pieces, sender_.Sent().bytes);
            memory_.Frame();
        }
        report_.isInterrupted = true;
        return true;
    }

    // A frame that was held back goes behind the one here.
    bool Finish()
    {
        memory_.Stop();
        if (road_.IsHolding() && !Send(FrameKind::ALIVE, {})) {
            return false;
        }
        if (!SendEnd(sender_, road_.Done())) {
            return FailToSend();
        }
        if (road_.Left() > 0 && !report_.isInterrupted) {
            return Fail("the stream is too short: faults left over: " + std::to_string(road_.Left()));
        }
        return true;
    }

    SideReport Report(const FlowReport &flow, const std::string &qos) const
    {
        Summary summary("source");
        AddLinkRows(summary, sender_.Sent(), watch_.Seconds());
        if (options_.faults.count > 0) {
            summary.Row("damaged", road_.Done().String());
        }
        summary.Row("QoS", qos);
        flow.AddRows(summary, options_.isVerbose);
        if (options_.isVerbose) {
            summary.Row("connection", link_.connection.String());
            memory_.AddRow(summary);
        }
        SideReport report = report_;
        report.summary = summary.Text();
        return report;
    }

private:
    bool Send(FrameKind kind, ByteView content)
    {
        return sender_.Send(kind, content) || FailToSend();
    }

    bool FailToSend()
    {
        const int error = errno;
        const std::string frame = " at frame " + std::to_string(sender_.Sent().frames);
        report_.isCaused = error == EAGAIN || error == EPIPE || error == ECONNRESET;
        if (error == EAGAIN) {
            return Fail("the sink took nothing for " + SecondsText(options_.timeout) + frame);
        }
        return Fail(report_.isCaused ? "the sink closed the link" + frame
                                     : "sending failed" + frame + ": " + std::strerror(error));
    }

    bool Fail(const std::string &reason)
    {
        report_.failure = reason;
        return false;
    }

    const PairLink &link_;
    const PairOptions &options_;
    StreamInput &input_;
    SocketRoad socketRoad_;
    FaultyRoad road_;
    FrameSender sender_;
    Stopwatch watch_;
    MemoryWatch memory_;
    SideReport report_;
};

}  // namespace

SideReport RunSource(const PairLink &link, const PairOptions &options, StreamInput &input)
{
    UnblockSideSignals(Interrupt);
    FlowReport flow("source");
    Source source(link, options, input);
    const bool isOffered = source.SendOffer();
    flow.Connected(isOffered);
    const StreamQos qos;
    flow.AudioOpened(isOffered);
    const bool isSent = isOffered && source.SendStream() && source.Finish();
    flow.AudioClosed(isSent);
    const std::string qosResults = qos.Reset();
    flow.Ended(isSent);
    return source.Report(flow, qosResults);
}
