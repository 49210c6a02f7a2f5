#pragma once

namespace confine {

/// Keeps of this process's capabilities those to change owners and modes, to read everything and to make
/// device files, and sees to it that no program that it executes gets others back. False: errno.
bool dropPrivileges();

}  // namespace confine
