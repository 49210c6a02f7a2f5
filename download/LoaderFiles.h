#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/Services.h"

namespace download {

inline constexpr const char* loaderName = "wdx.exe";

/// Where the loader and its settings file are: in the program's folder. Where that cannot be written (an
/// installed program), in the user's own data folder first ($XDG_DATA_HOME/pakrune, or
/// ~/.local/share/pakrune), which is made when something is saved.
class LoaderFiles {
 public:
  explicit LoaderFiles(const runtime::Services& services);

  std::string loader() const;                        ///< its path in Windows form, or empty
  std::optional<std::string> settings() const;       ///< the settings file's text
  void saveSettings(const std::string& text) const;  ///< a failure is ignored

 private:
  std::string found(const char* name) const;

  const platform::Files& files_;
  std::vector<std::string> folders_;  // looked in in this order; the first is written to
};

}  // namespace download
