#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace archive {

/// Bytes of names that go on one command line of tar; more go through a file.
constexpr std::size_t longestNameList = 100'000;

/// What tar (GNU tar 1.34) reads with --null -T: the names' bytes on disk, each ended by a NUL.
std::string namesFileText(const std::vector<std::string>& names);

/// The options that make tar read names from that file, and nothing else into them.
std::string namesFileOptions(const std::string& windowsPath);

}  // namespace archive
