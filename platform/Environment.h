#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace platform {

/// A folder as an entry of the program's PATH: in double quotes where a semicolon would cut it.
std::string pathEntry(std::string_view folder);

/// The environment as the program sees it: PATH is in Windows form (`C:\x;Z:\usr\bin`, entries between
/// semicolons) and is found under any case of "Path"; other names are exact. Made from the host's at start.
class Environment {
 public:
  Environment(const DriveTable& drives, const char* const* hostEnvironment);

  std::string get(std::string_view name) const;  ///< empty when absent
  void set(std::string_view name, std::string_view value);

  /// "NAME=value" for a host child; `furtherTarOptions` stand behind ours in TAR_OPTIONS: PATH in host form
  /// without "." and without entries that name nothing here; LC_ALL=C.UTF-8; QUOTING_STYLE=escape;
  /// TAR_OPTIONS=--sort=name --no-unquote; TZ=:/etc/localtime unless it is set; none of the variables that
  /// change what tools do or print (LANGUAGE, GZIP, PIGZ, BZIP, BZIP2, LBZIP2, TIME_STYLE, POSIXLY_CORRECT,
  /// BLOCK_SIZE, LS_BLOCK_SIZE).
  std::vector<std::string> forChild(std::string_view furtherTarOptions = {}) const;

  /// Entries of the program's PATH in order, Windows form, "." included, empty ones left out.
  std::vector<std::string> pathEntries() const;

 private:
  const DriveTable& drives_;
  std::vector<std::pair<std::string, std::string>> values_;
};

}  // namespace platform
