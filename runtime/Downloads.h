#pragma once

#include <string>

namespace runtime {

/// The ways to a terminal, for whoever has a file to send. Paths are Windows paths.
class Downloads {
 public:
  virtual ~Downloads() = default;
  virtual void netSetFile(const std::string& path) = 0;         ///< opens the network download for a file
  virtual void showfrmWDXOptions(const std::string& path) = 0;  ///< opens the serial download for a file
};

}  // namespace runtime
