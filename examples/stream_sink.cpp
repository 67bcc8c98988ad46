// SPDX-License-Identifier: Apache-2.0

#include <map>
#include <string>
#include <vector>

#include "channel_link.h"
#include "flow_report.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "ostra_context.h"
#include "stream_dump.h"
#include "stream_pair.h"
#include "summary.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

// What the context publishes about the source, as another part of the host process would see it.
class NotificationLog : public OHOS::DistributedHardware::IPublisherListener {
public:
    void OnMessage(const OHOS::DistributedHardware::DHTopic /* topic */, const std::string &message) override
    {
        messages_.push_back(message);
    }

    void AddRows(Summary &summary) const
    {
        for (const std::string &message : messages_) {
            summary.Row("notified", message);
        }
    }

private:
    std::vector<std::string> messages_;
};

void Notify(const std::string &deviceId, const std::string &event)
{
    OstraContext::GetInstance().AddWaitNotify(deviceId, event);
    OstraContext::GetInstance().PublishMessage();
}

// What the sink has received so far.
class Reception {
public:
    Reception(const Offer &expected, FILE *output, const StreamDump &dump)
        : expected_(expected), output_(output), dump_(dump)
    {
    }

    // Returns false when the frame cannot be taken or does not say what the source offered.
    bool Take(const ReceivedFrame &frame)
    {
        switch (frame.kind) {
            case FrameKind::DEVICE:
                return TakeDevice({frame.content.begin(), frame.content.end()});
            case FrameKind::SERVICE:
                return TakeService({frame.content.begin(), frame.content.end()});
            case FrameKind::SETTINGS:
                return TakeSettings(frame.content);
            case FrameKind::STREAM:
                dump_.Write(frame.content);
                return std::fwrite(frame.content.data(), 1, frame.content.size(), output_) == frame.content.size();
        }
        return false;
    }

    void AddRows(Summary &summary) const
    {
        summary.Row("device",
                    GetAnonyString(TextMember(device_, "deviceId")) + " " + TextMember(device_, "deviceName"));
        summary.Row("service",
                    GetAnonyString(service_.serviceId_) + " of type " + GetAnonyInt32(service_.serviceType_));
        summary.Row("codec bits", service_.audioProperties_.audioCodecType_);
        summary.Row("profiles", service_.audioProperties_.audioProfiles_);
        summary.Row("settings", settings_);
    }

private:
    bool TakeDevice(const std::string &document)
    {
        device_ = document;
        std::string expected;
        DHOSTRADeviceJson device = expected_.device;
        return device.Marshal(expected) == OSTRA_JSON_SUCCESS && document == expected;
    }

    bool TakeService(const std::string &document)
    {
        return service_.Unmarshal(document) == OSTRA_JSON_SUCCESS && SaysTheSame(service_, expected_.service) &&
               service_.audioProperties_.Unmarshal(service_.properties_) == OSTRA_JSON_SUCCESS;
    }

    bool TakeSettings(const std::vector<uint8_t> &bytes)
    {
        OHOS::MessageParcel parcel;
        std::map<int32_t, std::string> settings;
        if (!parcel.WriteBuffer(bytes.data(), bytes.size()) || !IpcUtils::UnMarshalling(parcel, settings)) {
            return false;
        }
        settings_ = settings[SETTING_SAMPLE_RATE] + " Hz, " + settings[SETTING_CHANNELS] + " channels, pieces of " +
                    settings[SETTING_PIECE_MS] + " ms";
        return settings[SETTING_SAMPLE_RATE] == std::to_string(SAMPLE_RATE) &&
               settings[SETTING_CHANNELS] == std::to_string(CHANNELS) &&
               settings[SETTING_PIECE_MS] == std::to_string(PIECE_MS);
    }

    const Offer &expected_;
    FILE *output_;
    const StreamDump &dump_;
    std::string device_;
    DHOSTRADeviceServiceJson service_;
    std::string settings_;
};

}  // namespace

bool RunSink(const PairLink &link, const PairOptions &options, FILE *output)
{
    constexpr auto notificationTopic = static_cast<OHOS::DistributedHardware::DHTopic>(8);
    const OHOS::sptr<NotificationLog> notifications = new NotificationLog();
    OstraContext::GetInstance().GetDHFwkKit()->RegisterPublisherListener(notificationTopic, notifications);
    Notify(link.connection.sourceNetworkId, ISOMERISM_CONNECT);

    FlowReport flow("sink");
    FrameReceiver receiver(link.socket);
    const StreamDump dump(options.isDumped);
    Reception reception(link.offer, output, dump);
    flow.Connected(0);
    flow.AudioOpened(0);
    const Stopwatch watch;
    ReceivedFrame frame;
    bool isWhole = true;
    ReceiveResult result = receiver.Receive(frame);
    for (; result == ReceiveResult::FRAME || result == ReceiveResult::BROKEN; result = receiver.Receive(frame)) {
        if (result == ReceiveResult::BROKEN || !reception.Take(frame)) {
            OSTRA_LOGE("frame dropped");
            isWhole = false;
        }
    }
    isWhole &= std::fflush(output) == 0;
    isWhole &= result == ReceiveResult::END && receiver.Count().gaps == 0;
    flow.AudioClosed(isWhole ? 0 : -1);
    flow.Ended(isWhole ? 0 : -1);
    Notify(link.connection.sourceNetworkId, ISOMERISM_DISCONNECT);

    Summary summary("sink");
    AddLinkRows(summary, receiver.Count(), link.connection.String(), watch.Seconds());
    summary.Row("sequence gaps", receiver.Count().gaps);
    reception.AddRows(summary);
    notifications->AddRows(summary);
    flow.AddRows(summary);
    dump.AddRows(summary);
    summary.Print();
    return isWhole;
}
