#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "browser/LsEntry.h"

namespace browser {

constexpr std::size_t modeBatch = 200;  ///< names of one run

/// A name of the working folder as an argument of `ls`, and the blank behind it. One that begins with "-" is
/// passed as "./-name", so that it is no option.
std::string listedName(const std::string& name);

/// The command that asks for the modes of some names of one folder, which is its working folder.
std::string modeCommand(std::span<const std::string> names);

/// What a run told of its names.
struct BatchModes {
  std::vector<LsEntry> entries;  ///< one a name, in their order; empty where nothing was said of it
  std::size_t withoutLine = 0;   ///< names that no line ends in
  std::size_t complaints = 0;    ///< lines of `ls` itself
};

/// What is said of a name is said by the line which ends in the name as `ls` prints it; lines come in the
/// order of the names. A name without a line gets as its mode the first 10 characters of the complaint that
/// names it.
BatchModes modesOf(std::string_view output, std::span<const std::string> names);

/// The last line that ends in a name as `ls` prints it; empty when there is none.
std::string_view lineOf(std::string_view output, const std::string& name);

}  // namespace browser
