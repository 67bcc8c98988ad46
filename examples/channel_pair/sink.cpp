// SPDX-License-Identifier: Apache-2.0

#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "flow_report.h"
#include "ostra_constants.h"
#include "ostra_context.h"
#include "pair.h"
#include "parcel_map.h"
#include "report.h"
#include "stream_dump.h"
#include "stream_end.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

// What the context publishes about the source, as another part of the host process would see it.
class NotificationLog : public OHOS::DistributedHardware::IPublisherListener {
public:
    void OnMessage(const OHOS::DistributedHardware::DHTopic /* topic */, const std::string &message) override
    {
        text_ += (text_.empty() ? "" : ", ") + TextMember(message, "isomerism_event") + " of " +
                 GetAnonyString(TextMember(message, "dev_id"));
    }

    const std::string &Text() const
    {
        return text_;
    }

private:
    std::string text_;
};

void Notify(const std::string &deviceId, const std::string &event)
{
    OstraContext::GetInstance().AddWaitNotify(deviceId, event);
    OstraContext::GetInstance().PublishMessage();
}

// What the source says of itself and of the stream, as far as it arrived and agrees with what it was to offer.
class Introduction {
public:
    explicit Introduction(const Offer &expected) : expected_(expected)
    {
    }

    void TakeDevice(ByteView content)
    {
        device_.assign(content.data, content.data + content.size);
        std::string expected;
        DHOSTRADeviceJson device = expected_.device;
        isDeviceRight_ = device.Marshal(expected) == OSTRA_JSON_SUCCESS && device_ == expected;
    }

    void TakeService(ByteView content)
    {
        isServiceRight_ = service_.Unmarshal({content.data, content.data + content.size}) == OSTRA_JSON_SUCCESS &&
                          SaysTheSame(service_, expected_.service) &&
                          service_.audioProperties_.Unmarshal(service_.properties_) == OSTRA_JSON_SUCCESS;
    }

    void TakeSettings(ByteView content)
    {
        ParcelMap settings = ReadMap(content).value_or(ParcelMap());
        settings_ = settings[SETTING_SAMPLE_RATE] + " Hz, " + settings[SETTING_CHANNELS] + " channels, pieces of " +
                    settings[SETTING_PIECE_MS] + " ms";
        areSettingsRight_ = settings[SETTING_SAMPLE_RATE] == std::to_string(SAMPLE_RATE) &&
                            settings[SETTING_CHANNELS] == std::to_string(CHANNELS) &&
                            settings[SETTING_PIECE_MS] == std::to_string(PIECE_MS);
    }

    // What did not come, or not as it was offered; each with a comma behind it.
    std::string Missing() const
    {
        return std::string(isDeviceRight_ ? "" : "the device document is missing or not as offered, ") +
               (isServiceRight_ ? "" : "the service document is missing or not as offered, ") +
               (areSettingsRight_ ? "" : "the settings are missing or not as offered, ");
    }

    void AddRows(Summary &summary) const
    {
        const std::string missing = "missing";
        summary.Row("device", isDeviceRight_ ? GetAnonyString(TextMember(device_, "deviceId")) + " " +
                                                   TextMember(device_, "deviceName")
                                             : missing);
        const auto &audio = service_.audioProperties_;
        summary.Row("service", isServiceRight_
                                   ? GetAnonyString(service_.serviceId_) + " of type " +
                                         GetAnonyInt32(service_.serviceType_) + ", codec bits " +
                                         std::to_string(audio.audioCodecType_) + ", profiles " + audio.audioProfiles_
                                   : missing);
        summary.Row("settings", areSettingsRight_ ? settings_ : missing);
    }

private:
    const Offer &expected_;
    std::string device_;
    DHOSTRADeviceServiceJson service_;
    std::string settings_;
    bool isDeviceRight_ = false;
    bool isServiceRight_ = false;
    bool areSettingsRight_ = false;
};

class Sink {
public:
    Sink(const PairLink &link, const PairOptions &options, UniqueFd output)
        : options_(options),
          output_(std::move(output)),
          receiver_(link.socket),
          introduction_(link.offer),
          dump_(options.isDumped)
    {
    }

    // Returns false, with the reason in the report, when not all arrived that was sent.
    bool ReceiveStream()
    {
        ReceivedFrame frame;
        while (!end_) {
            const ReceiveResult result = receiver_.Receive(frame);
            memory_.Frame();
            if (result == ReceiveResult::CLOSED || result == ReceiveResult::FAILED) {
                return FailWithoutEnd(result == ReceiveResult::CLOSED ? 0 : errno);
            }
            if (result == ReceiveResult::FRAME && !Take(frame)) {
                return false;
            }
        }
        if (!output_.Close()) {
            return Fail(options_.outputPath + ": " + std::strerror(errno));
        }
        const std::string shortfall = introduction_.Missing() + Shortfall(*end_, receiver_.Arrived(), Damaged());
        return shortfall.empty() || Fail(shortfall.substr(0, shortfall.find_last_not_of(", ") + 1));
    }

    SideReport Report(const FlowReport &flow, const std::string &notified) const
    {
        Summary summary("sink");
        AddLinkRows(summary, receiver_.Arrived(), watch_.Seconds());
        summary.Row("lost", end_ ? std::to_string(end_->sent.frames - receiver_.Arrived().frames)
                                 : "unknown: the end of the stream is missing");
        summary.Row("damaged", Damaged().String());
        introduction_.AddRows(summary);
        summary.Row("notified", notified);
        flow.AddRows(summary, options_.isVerbose);
        dump_.AddRows(summary);
        if (!options_.outputPath.empty()) {
            summary.Row("output", options_.outputPath);
        }
        if (options_.isVerbose) {
            memory_.AddRow(summary);
        }
        SideReport report = report_;
        report.summary = summary.Text();
        report.verdict = Damaged().Sum() == 0 ? "every byte arrived"
                                              : "frames damaged on the way: " + Damaged().String() +
                                                    "; each was caught and every other frame arrived";
        return report;
    }

private:
    const DamageCount &Damaged() const
    {
        return receiver_.Damaged();
    }

    bool Take(const ReceivedFrame &frame)
    {
        switch (frame.kind) {
            case FrameKind::STREAM:
                return TakePiece(frame.content);
            case FrameKind::DEVICE:
                introduction_.TakeDevice(frame.content);
                break;
            case FrameKind::SERVICE:
                introduction_.TakeService(frame.content);
                break;
            case FrameKind::SETTINGS:
                introduction_.TakeSettings(frame.content);
                break;
            case FrameKind::END:
                memory_.Stop();
                end_ = ReadEnd(frame.content);
                return end_ || Fail("the frame at the end of the stream is not understood");
            case FrameKind::ALIVE:
                break;
        }
        return true;
    }

    bool TakePiece(ByteView piece)
    {
        if (output_.IsOpen() && !WriteAll(output_.Get(), piece.data, piece.size)) {
            return Fail(options_.outputPath + ": " + std::strerror(errno));
        }
        return dump_.Write(piece) || Fail(dump_.Failure());
    }

    bool FailWithoutEnd(int error)
    {
        const std::string after = " after frame " + std::to_string(receiver_.Arrived().frames);
        report_.isCaused = error == 0 || error == EAGAIN;
        if (error == EAGAIN) {
            return Fail(introduction_.Missing() + "the source sent nothing for " + SecondsText(options_.timeout) +
                        after);
        }
        return Fail(introduction_.Missing() + "the end of the stream is missing" + after +
                    (error == 0 ? "" : std::string(": ") + std::strerror(error)));
    }

    bool Fail(const std::string &reason)
    {
        report_.failure = reason;
        return false;
    }

    const PairOptions &options_;
    UniqueFd output_;
    FrameReceiver receiver_;
    Introduction introduction_;
    StreamDump dump_;
    std::optional<StreamEnd> end_;
    Stopwatch watch_;
    MemoryWatch memory_;
    SideReport report_;
};

}  // namespace

SideReport RunSink(const PairLink &link, const PairOptions &options, UniqueFd output)
{
    UnblockSideSignals(SIG_IGN);  // the source hears an interrupt, and ends the stream
    constexpr auto notificationTopic = static_cast<OHOS::DistributedHardware::DHTopic>(8);
    const OHOS::sptr<NotificationLog> notifications = new NotificationLog();
    OstraContext::GetInstance().GetDHFwkKit()->RegisterPublisherListener(notificationTopic, notifications);
    Notify(link.connection.sourceNetworkId, ISOMERISM_CONNECT);

    FlowReport flow("sink");
    Sink sink(link, options, std::move(output));
    flow.Connected(true);
    flow.AudioOpened(true);
    const bool isWhole = sink.ReceiveStream();
    flow.AudioClosed(isWhole);
    flow.Ended(isWhole);
    Notify(link.connection.sourceNetworkId, ISOMERISM_DISCONNECT);
    OstraContext::GetInstance().GetDHFwkKit()->UnregisterPublisherListener(notificationTopic, notifications);
    return sink.Report(flow, notifications->Text());
}
