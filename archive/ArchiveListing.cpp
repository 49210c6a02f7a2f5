#include "archive/ArchiveListing.h"

#include "archive/ArchiveTreeBuilder.h"
#include "archive/ExtractCommand.h"
#include "archive/ListingOutput.h"

namespace archive {

using runtime::ArchiveKind;
using runtime::Buttons;
using runtime::Icon;

CheckedArchive checkArchive(const runtime::Services& services, const std::string& path,
                            const char* notChosen) {
  if (path == noArchiveChosen) {
    services.user.message(notChosen, Buttons::Ok, Icon::Critical, "Input not selected..");
    return {std::nullopt, Focus::ArchivePath};
  }
  if (!services.system.files.fileExists(path)) {
    services.user.message("Invalid tar file " + path, Buttons::Ok, Icon::Critical, "Error");
    return {};
  }
  const auto kind = runtime::archiveKind(path);
  if (kind) return {kind, Focus::None};
  services.user.message("Unrecognized Tar file extension", Buttons::Ok, Icon::Critical, "Input file error..");
  return {std::nullopt, Focus::ArchivePath};
}

bool toolFound(const runtime::Services& services, ArchiveKind kind) {
  const bool ipk = kind == ArchiveKind::Ipk;
  const std::string tool = ipk ? "ar.exe" : "tar.exe";
  if (services.api.ProbeTool(runtime::withTrailingBackslash(services.cygwin.cygwinBin()) + tool)) return true;
  services.user.message("Error: Unable to locate '" + tool + "'.\r\nTry reinstalling Pakrune or Cygwin",
                        Buttons::Ok, Icon::Critical, ipk ? "Unable to Extract" : "Unable to Untar");
  return false;
}

std::optional<std::string> readListing(const runtime::Services& services, ArchiveKind kind,
                                       const std::string& path) {
  if (!toolFound(services, kind)) return std::nullopt;
  std::string output = services.api.RunCapture(services.cygwin.cygwinBin(), listCommand(kind, path)).text;
  const auto problem = listingProblem(output, path);
  if (!problem) return output;
  services.user.message(*problem, Buttons::Ok, Icon::Information, "Error Opening Package");
  return std::nullopt;
}

ArchiveTree fillTree(const runtime::Services& services, ArchiveKind kind, const std::string& path,
                     std::string listing, ListingProgress& progress) {
  const auto packageSize = [&services, &path] {
    return services.api.RunCapture(services.cygwin.cygwinBin(), packageSizeCommand(path)).text;
  };
  ArchiveTreeBuilder builder(kind, std::move(listing), packageSize);
  Pace pace;
  const std::size_t count = builder.lineCount();
  for (std::size_t i = 0; builder.addNextLine(); ++i) {
    if (pace.due() || i + 1 == count) progress.showPercent(listingPercent(i, count));
    if (progress.cancelled()) break;
  }
  return builder.finish();
}

}  // namespace archive
