#include "perms/OwnershipJob.h"

#include "runtime/PathBatches.h"

namespace perms {
namespace {

using runtime::JobEnd;

}  // namespace

std::string OwnershipItems::target() const {
  return paths.empty() ? folder + '*' : std::to_string(paths.size()) + " files in " + folder;
}

Ownership ownerTo(const std::string& account) {
  return {"chown.exe -R " + account + ' ', "Owner(" + account + ')', "Unable to Set Owner"};
}

Ownership groupToKT500() { return {"chgrp.exe -R KT500 ", "Group(1)", "Unable to set Group"}; }

OwnershipJob::OwnershipJob(const runtime::Services& services, Ownership ownership, OwnershipItems items)
    : services_(services), ownership_(std::move(ownership)), items_(std::move(items)) {}

std::vector<std::string> OwnershipJob::batches() const {
  if (items_.paths.empty()) return {runtime::ToCygwinPath(items_.folder)};
  std::vector<std::string> paths;
  for (const std::string& path : items_.paths) {
    if (services_.system.files.isLink(path))
      services_.log.append(" Left out, it is a link: " + path);
    else
      paths.push_back(path);
  }
  return runtime::pathBatches(paths);
}

JobEnd OwnershipJob::run() {
  const std::vector<std::string> runs = batches();
  JobEnd end = runs.empty() ? JobEnd::Failed : JobEnd::Done;
  for (std::size_t i = 0; i < runs.size() && end == JobEnd::Done; ++i) {
    end = runBatch(runs[i]);
    if (end == JobEnd::Stopped)
      services_.log.append(" Stopped: setting " + ownership_.name + ", after " + std::to_string(i) + " of " +
                           std::to_string(runs.size()) + " runs");
  }
  services_.log.append(end == JobEnd::Done ? ' ' + ownership_.name + " successfully set: " + items_.target()
                                           : " FAILED to set " + ownership_.name + ": " + items_.target());
  return end;
}

JobEnd OwnershipJob::runBatch(const std::string& batch) const {
  const runtime::ToolResult run =
      services_.api.RunCapture(services_.cygwin.cygwinBin(), ownership_.command + batch, {},
                               runtime::mayChangeForAll({items_.folder}));
  if (run.stopped) return JobEnd::Stopped;
  if (run.good() && run.text.empty()) return JobEnd::Done;
  const std::string tool = ownership_.command.substr(0, ownership_.command.find('.'));
  const std::string said = run.text.empty() ? runtime::howItEnded(run, tool) : run.text;
  services_.user.message(said == runtime::startFailure ? ownership_.cannotStart : said, runtime::Buttons::Ok,
                         runtime::Icon::Critical, "Error..");
  return JobEnd::Failed;
}

}  // namespace perms
