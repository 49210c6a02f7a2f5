#include "archive/ListingJob.h"

#include "archive/ArchiveTreeBuilder.h"
#include "archive/ExtractCommand.h"
#include "archive/ListingOutput.h"
#include "archive/PackageNotice.h"
#include "runtime/MissingTool.h"
#include "runtime/Pace.h"

namespace archive {

using runtime::ArchiveKind;
using runtime::Buttons;
using runtime::Icon;
using runtime::JobEnd;

namespace {

/// By its name; the older form of a package is a compressed tar inside.
std::optional<ArchiveKind> kindOf(const platform::Files& files, const std::string& path) {
  const auto kind = runtime::archiveKind(path);
  const bool compressed = kind == ArchiveKind::Ipk && files.readBytes(path, 2) == "\x1f\x8b";
  return compressed ? ArchiveKind::Gzip : kind;
}

}  // namespace

CheckedArchive checkArchive(const runtime::Services& services, const std::string& path,
                            const char* notChosen) {
  if (path == noArchiveChosen) {
    services.user.message(notChosen, Buttons::Ok, Icon::Critical, "Input not selected..");
    return {std::nullopt, Focus::ArchivePath};
  }
  if (!services.system.files.isRegularFile(path)) {
    services.user.message("Invalid tar file " + path, Buttons::Ok, Icon::Critical, "Error");
    return {};
  }
  const auto kind = kindOf(services.system.files, path);
  if (kind) return {kind, Focus::None};
  services.user.message("Unrecognized Tar file extension", Buttons::Ok, Icon::Critical, "Input file error..");
  return {std::nullopt, Focus::ArchivePath};
}

bool toolFound(const runtime::Services& services, ArchiveKind kind) {
  const bool ipk = kind == ArchiveKind::Ipk;
  return ipk ? runtime::toolFound(services, "ar.exe", "Unable to Extract")
             : runtime::toolFound(services, "tar.exe", "Unable to Untar");
}

namespace {

/// A member that an ipk lists and that ar then cannot give makes the listing a bad one.
Listing fillTree(const runtime::Services& services, ArchiveKind kind, const std::string& path,
                 std::string listing, ListingProgress& progress) {
  runtime::ToolResult sizeRun{"", 0};
  const auto packageSize = [&] {
    sizeRun =
        services.api.RunCapture(services.cygwin.cygwinBin(), packageSizeCommand(path), {}, listingManner());
    return sizeRun.text;
  };
  progress.filling();
  progress.showPercent(0);
  ArchiveTreeBuilder builder(kind, std::move(listing), packageSize);
  runtime::Pace pace;
  const platform::Stop stop = services.system.busy.stop();
  const std::size_t count = builder.lineCount();
  for (std::size_t i = 0; !stop.requested() && builder.addNextLine(); ++i)
    if (pace.due() || i + 1 == count) progress.showPercent(listingPercent(i, count));
  if (stop.requested()) return {JobEnd::Stopped, builder.finish()};
  if (sizeRun.good()) return {JobEnd::Done, builder.finish()};
  tellListingProblem(services.user, *listingProblem(sizeRun, kind, path, services.system.files));
  return {JobEnd::Failed};
}

}  // namespace

Listing listArchive(const runtime::Services& services, ArchiveKind kind, const std::string& path,
                    ListingProgress& progress) {
  if (!toolFound(services, kind)) return {JobEnd::Failed};
  runtime::ToolResult run =
      services.api.RunCapture(services.cygwin.cygwinBin(), listCommand(kind, path), {}, listingManner());
  if (services.system.busy.stopRequested()) return {JobEnd::Stopped};
  const auto problem = listingProblem(run, kind, path, services.system.files);
  if (!problem) return fillTree(services, kind, path, std::move(run.text), progress);
  tellListingProblem(services.user, *problem);
  return {JobEnd::Failed};
}

Listing ListingJob::run() {
  const CheckedArchive checked = checkArchive(services_, path_, "Please select a Tar file first");
  if (!checked.kind) return {JobEnd::Refused};
  progress_.reading();
  Listing listing = listArchive(services_, *checked.kind, path_, progress_);
  if (listing.end == JobEnd::Done && runtime::archiveKind(path_) == ArchiveKind::Ipk) {
    logPackage(services_, *checked.kind, path_, listing.tree);
    if (services_.system.busy.stopRequested()) listing.end = JobEnd::Stopped;
  }
  if (listing.end == JobEnd::Stopped) services_.log.append(" Stopped: listing " + path_);
  return listing;
}

}  // namespace archive
