// SPDX-License-Identifier: Apache-2.0
//
// Runs the source and the sink as child processes and waits for both, even if one of them crashes or hangs.

#ifndef EXAMPLES_CHANNEL_PAIR_PROCESS_H
#define EXAMPLES_CHANNEL_PAIR_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <string>

#include "pair.h"

struct ChildProcess {
    std::string name;
    pid_t pid = -1;  // -1 after it has ended
    int pipe = -1;   // the read end of the pipe for its report

    // Set after it has ended. The exit reason is empty for a normal exit, otherwise for example "the sink was killed by
    // signal 9 (Killed)".
    SideReport report;
    std::string exitReason;
};

// From now on, SIGINT and SIGTERM interrupt system calls and are counted, in this process and its children.
void HandleInterrupts();

// Returns the number of these signals that this process has received.
int InterruptCount();

// Forks a child that is killed when this process ends.
ChildProcess Start(const std::string &name, const std::function<SideReport()> &run);

// Waits for both children. Kills a child that is still running `timeout` + 0.5 seconds after the other one has ended.
// Forwards SIGINT and SIGTERM to the source as SIGINT; a second signal kills both.
void WaitForBoth(ChildProcess &source, ChildProcess &sink, double timeout);

#endif  // EXAMPLES_CHANNEL_PAIR_PROCESS_H
