// SPDX-License-Identifier: Apache-2.0
//
// Packs a channel frame, parses it as the receiver would, and prints its header value, content and CRC.

#include <cstdio>

#include "channel_protocol.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

int main()
{
    unsigned char content[] = {'h', 'e', 'l', 'l', 'o'};
    ChannelProtocol sent;
    if (!sent.Create(5, sizeof(content)) || !sent.WriteContent(content, sizeof(content))) {
        return 1;
    }

    // Send sent.GetBufferSize() bytes from sent.GetBuffer() to the other side, which parses them:
    ChannelProtocol received;
    UnPackagedEA header;
    if (!received.CreateFromBuffer(sent.GetBuffer(), sent.GetBufferSize()) || !received.ReadEA(header, 0)) {
        return 1;
    }
    const int length = received.GetBufferSize() - header.offset;
    const auto *text = reinterpret_cast<const char *>(received.GetBuffer()) + header.offset;
    // Prints: header value 5, content hello, CRC A1CD
    std::printf("header value %u, content %.*s, CRC %04X\n", header.value, length, text,
                received.GetCrc(received.GetBuffer(), received.GetBufferSize()));
    return 0;
}
