// SPDX-License-Identifier: Apache-2.0

#include <vector>

#include "channel_link.h"
#include "ostra_adapter_log.h"
#include "stream_pair.h"
#include "summary.h"

bool RunSource(const PairLink &link, const PairOptions &options, FILE *input)
{
    FrameSender sender(link.socket, options.flippedFrame);
    const Stopwatch watch;
    Progress progress;
    bool isSent = true;
    std::vector<uint8_t> piece(PIECE_BYTES);
    while (isSent && (piece.resize(std::fread(piece.data(), 1, PIECE_BYTES, input)), !piece.empty())) {
        isSent = sender.Send(FrameKind::STREAM, piece);
        progress.Show(sender.Count().bytes);
    }
    if (!isSent) {
        OSTRA_LOGE("sending stopped at frame %llu", static_cast<unsigned long long>(sender.Count().frames));
    }

    Summary summary("source");
    AddLinkRows(summary, sender.Count(), link.connection.String(), watch.Seconds());
    summary.Print();
    return isSent && std::ferror(input) == 0;
}
