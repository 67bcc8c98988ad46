// SPDX-License-Identifier: Apache-2.0
//
// The line that tells a watcher how far a long run is.

#ifndef EXAMPLES_PROGRESS_H
#define EXAMPLES_PROGRESS_H

#include "fault_injector.h"
#include "report.h"

// One line on standard error, renewed several times a second while a terminal watches.
class Progress {
public:
    explicit Progress(const StreamLength &length);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    void Show(uint64_t pieces, uint64_t bytes);

private:
    StreamLength length_;
    bool isWatched_;
    bool isShown_ = false;
    double nextAt_;
    Stopwatch watch_;
};

#endif  // EXAMPLES_PROGRESS_H
