#pragma once

#include <sys/types.h>

namespace platform {

/// SIGINT, SIGTERM and SIGHUP while a tool runs: passed on to the tool's process group, so that the run ends
/// and cleans up after itself; the program then ends by its own choice.

/// Installs the handlers (a signal that is ignored, as under nohup, stays ignored); SIGPIPE becomes a failed
/// write. Once, in main().
void catchEndSignals();

int endSignal();            ///< the first such signal that arrived, 0 for none
int endSignalDescriptor();  ///< becomes readable when one arrives, -1 before catchEndSignals()

/// The process group that gets them; 0 for none. Set by the runner around a run.
void passSignalsTo(pid_t group);

}  // namespace platform
