// SPDX-License-Identifier: Apache-2.0
//
// Reports the steps of one side of the example pair, and listens to the events that come of it, as the platform's
// analysis tools would.

#ifndef EXAMPLES_FLOW_REPORT_H
#define EXAMPLES_FLOW_REPORT_H

#include <memory>
#include <string>

#include "report.h"

class FlowReport {
public:
    // Reports the start of the service.
    explicit FlowReport(std::string side);
    ~FlowReport();
    FlowReport(const FlowReport &) = delete;
    FlowReport &operator=(const FlowReport &) = delete;

    void Connected(bool isSuccess);
    void AudioOpened(bool isSuccess);
    void AudioClosed(bool isSuccess);
    // Reports the disconnect and the stop of the service.
    void Ended(bool isSuccess);

    // How many events the listener received and how they went, in one row; with `isVerbose` a row for each.
    void AddRows(Summary &summary, bool isVerbose) const;

private:
    class Listener;

    std::string side_;
    std::shared_ptr<Listener> listener_;
};

#endif  // EXAMPLES_FLOW_REPORT_H
