#pragma once

#include <optional>
#include <string>

#include "archive/PackCommand.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace archive {

struct PackResult {
  runtime::JobEnd end = runtime::JobEnd::Refused;
  std::string path;               ///< of the output, whole; isMade() says whether it stands
  bool unknownExtension = false;  ///< refused because of the output's name
  bool madeNew = false;           ///< an append became a new file, as the user agreed
};

inline bool isMade(const PackResult& result) {
  return result.end == runtime::JobEnd::Done || result.end == runtime::JobEnd::Remarks;
}

/// Creates an archive: every check, question and message of the archive dialog's "Create Tar", the staging of
/// usr8, the tar run and its exit code. Whoever starts it holds the gate and has taken the selection once.
class PackJob {
 public:
  PackJob(const runtime::Services& services, PackSelection selection, PackSettings settings);
  PackResult run();

 private:
  bool mayWrite();
  bool mayReplace();
  bool settleMode();
  bool refuse(const std::string& problem, const char* title = runtime::programTitle);
  runtime::JobEnd create();

  runtime::Services services_;
  PackSelection selection_;
  PackSettings settings_;
  std::optional<runtime::ArchiveKind> kind_;
  bool replaces_ = false;
  PackResult result_;
};

}  // namespace archive
