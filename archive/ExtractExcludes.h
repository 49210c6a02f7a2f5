#pragma once

#include <string>
#include <vector>

namespace archive {

/// The options that make tar (GNU tar 1.34) leave members out, with all that lies below them.
std::string excludeOptions(const std::vector<std::string>& excludes);

/// What stands for them where they do not fit on a command line. A line of such a file cannot hold a line
/// feed and does not end in a blank: those names become patterns, in which any control character stands for
/// the line feed.
struct ExcludeFiles {
  std::string names;     ///< bytes of the file of names
  std::string patterns;  ///< bytes of the file of patterns
};
ExcludeFiles excludeFiles(const std::vector<std::string>& excludes);
/// Windows paths of the two files.
std::string excludeFileOptions(const std::string& names, const std::string& patterns);

/// The options that leave out these folders, and nothing of what lies below them.
std::string spareOptions(const std::vector<std::string>& folders, bool recursion);

}  // namespace archive
