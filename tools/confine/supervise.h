#pragma once

#include <sys/types.h>

#include "platform/Descriptor.h"

namespace confine {

/// The end of this process's parent, which must be `parent`, ends this process from here on. Lasts until this
/// process changes what it may do. False: errno.
bool endWith(pid_t parent);

/// Returns in the process that is to become the tool: a child of the first process of a process namespace of
/// its own (enterNamespaces). The caller itself waits for it and ends as it ended: with its status, or by the
/// same signal. The end of any of the three ends all processes of the namespace. `report` stays open in the
/// tool alone. False: errno; there is no tool then.
///
/// The end signals are sent to the process group: the tool gets them itself, the two that wait outlast it.
bool becomeSupervised(platform::Descriptor& report);

}  // namespace confine
