// SPDX-License-Identifier: Apache-2.0

#include "channel_link.h"
#include "ostra_adapter_log.h"
#include "stream_pair.h"
#include "summary.h"

bool RunSink(const PairLink &link, FILE *output)
{
    FrameReceiver receiver(link.socket);
    const Stopwatch watch;
    ReceivedFrame frame;
    bool isWhole = true;
    ReceiveResult result = receiver.Receive(frame);
    for (; result == ReceiveResult::FRAME || result == ReceiveResult::BROKEN; result = receiver.Receive(frame)) {
        if (result == ReceiveResult::BROKEN) {
            OSTRA_LOGE("frame dropped");
            isWhole = false;
            continue;
        }
        isWhole &= std::fwrite(frame.content.data(), 1, frame.content.size(), output) == frame.content.size();
    }
    isWhole &= std::fflush(output) == 0;

    Summary summary("sink");
    AddLinkRows(summary, receiver.Count(), link.connection.String(), watch.Seconds());
    summary.Row("frames lost", receiver.Count().lost);
    summary.Print();
    return isWhole && result == ReceiveResult::END && receiver.Count().lost == 0;
}
