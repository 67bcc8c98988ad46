// SPDX-License-Identifier: Apache-2.0
//
// A raised QoS level for the thread that sends a stream. A platform that refuses leaves the thread as it is.

#ifndef EXAMPLES_STREAM_QOS_H
#define EXAMPLES_STREAM_QOS_H

#include <cstdint>
#include <string>

class StreamQos {
public:
    // Raises the level of the calling thread.
    StreamQos();

    // Takes it back, and tells in words what the platform said to both.
    std::string Reset() const;

private:
    int32_t tid_;
    int32_t setResult_ = 0;
};

#endif  // EXAMPLES_STREAM_QOS_H
