#pragma once

#include <string>

#include "tools/kt500sim_event.h"
#include "tools/kt500sim_store.h"
#include "tools/kt500sim_wait.h"

namespace kt500sim {

/// Whether a stored file is an archive that is unpacked, by its name.
bool isInstallable(const std::string& name);

struct Package {
  std::string name;   ///< of the stored archive
  int archive = -1;   ///< itself, lent: another client may have replaced the stored one
  std::string owner;  ///< an account
  std::uint64_t free = 0;
  Moment until;  ///< its unpacking is ended then
};

/// Unpacks a stored archive as a terminal does: into the owner's home, members "../usr8/..." into that of
/// usr8. Tells what it held, with modes and numeric owners as the archive has them. An archive with one
/// member that leads elsewhere, with more than `free` bytes, or that cannot be unpacked to its end changes
/// nothing, and why is told.
void install(const Store& store, const Package& package, const Events& event);

}  // namespace kt500sim
