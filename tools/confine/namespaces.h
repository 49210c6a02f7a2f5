#pragma once

namespace confine {

/// Enters namespaces of this process's own (its children's, for processes). root does so as he is; everybody
/// else within a user namespace that knows only his own two numbers. False: errno.
bool enterNamespaces(bool mounts, bool processes);

}  // namespace confine
