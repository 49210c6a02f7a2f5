#pragma once

namespace confine {

/// From here on this process and its children get no socket of any kind, cannot open a file by its number
/// behind the mounts' back, and cannot type into the terminal. Needs dropPrivileges() before. False: errno;
/// ENOTSUP for a processor whose calls are not known here.
bool refuseCalls();

}  // namespace confine
