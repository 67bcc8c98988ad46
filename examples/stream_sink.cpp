// SPDX-License-Identifier: Apache-2.0

#include <string>

#include "channel_link.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "stream_pair.h"
#include "summary.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

// What the sink has received so far.
class Reception {
public:
    Reception(const Offer &expected, FILE *output) : expected_(expected), output_(output)
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
            case FrameKind::STREAM:
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

    const Offer &expected_;
    FILE *output_;
    std::string device_;
    DHOSTRADeviceServiceJson service_;
};

}  // namespace

bool RunSink(const PairLink &link, FILE *output)
{
    FrameReceiver receiver(link.socket);
    Reception reception(link.offer, output);
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

    Summary summary("sink");
    AddLinkRows(summary, receiver.Count(), link.connection.String(), watch.Seconds());
    summary.Row("sequence gaps", receiver.Count().gaps);
    reception.AddRows(summary);
    summary.Print();
    return isWhole && result == ReceiveResult::END && receiver.Count().gaps == 0;
}
