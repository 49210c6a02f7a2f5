#pragma once

#include <string>

#include "tools/kt500sim_store.h"

namespace kt500sim {

/// Whether a stored file is an archive that is unpacked, by its name.
bool isInstallable(const std::string& name);

/// Unpacks a stored archive as a terminal does: into the owner's home, members "../usr8/..." into that of
/// usr8. Prints what it held, with modes and numeric owners as the archive has them. An archive with one
/// member that leads elsewhere, or with more than `free` bytes, is not unpacked at all.
void install(const Store& store, std::uint64_t free, const std::string& name, const std::string& owner);

}  // namespace kt500sim
