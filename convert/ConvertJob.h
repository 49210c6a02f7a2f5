#pragma once

#include <functional>
#include <string>
#include <vector>

#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace convert {

/// What is to be converted: the selection as it was at the click.
struct ConvertItems {
  std::vector<std::string> paths;  ///< full Windows paths of files
  std::string folder;              ///< the current folder, trailing backslash; for the log
};

/// How a conversion ended; the user has been told, and the log holds its line.
struct ConvertResult {
  runtime::JobEnd end = runtime::JobEnd::Failed;
  std::size_t skipped = 0;  ///< binary files, which were left alone
};

/// Turns the line ends of the selected files into Unix ones. What was converted before a failure stays so.
class ConvertJob {
 public:
  /// `begun` is called when the user has agreed, before the first file is touched.
  ConvertJob(const runtime::Services& services, ConvertItems items, std::function<void()> begun = {});
  ConvertResult run();

 private:
  bool toolFound() const;
  bool agreed() const;
  void findFolders();
  runtime::JobEnd convertAll();
  runtime::JobEnd convertBatch(const std::string& batch);
  runtime::JobEnd fail(const std::string& text) const;
  void tellSuccess() const;
  std::string target() const;

  runtime::Services services_;
  ConvertItems items_;
  std::function<void()> begun_;
  std::vector<std::string> folders_;
  std::size_t skipped_ = 0;
};

}  // namespace convert
