#pragma once

#include <vector>

namespace runtime {

/// An account of the terminal, in the order in which the owner lists show them.
struct OwnerEntry {
  const char* name;
  int id;  ///< its number on the terminal
};

/// usr1 (500) to usr8 (507), root (0).
const std::vector<OwnerEntry>& ownerEntries();

}  // namespace runtime
