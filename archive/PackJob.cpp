#include "archive/PackJob.h"

#include <algorithm>

#include "archive/PackList.h"
#include "archive/PackRun.h"

namespace archive {
namespace {

using runtime::Answer;
using runtime::Buttons;
using runtime::Consequence;
using runtime::Icon;
using runtime::JobEnd;

}  // namespace

PackJob::PackJob(const runtime::Services& services, PackSelection selection, PackSettings settings)
    : services_(services),
      selection_(std::move(selection)),
      settings_(std::move(settings)),
      kind_(runtime::archiveKind(settings_.outputPath)) {
  result_.path = settings_.outputPath;
}

PackResult PackJob::run() {
  const platform::Busy& busy = services_.system.busy;
  if (!busy.stopRequested() && mayWrite() && mayReplace() && settleMode()) result_.end = create();
  // What asks after a stop is refused, which is no answer of the user's.
  if (result_.end == JobEnd::Refused && busy.stopRequested()) result_.end = JobEnd::Stopped;
  if (result_.end == JobEnd::Stopped) services_.log.append(" Stopped: creating " + result_.path);
  return result_;
}

bool PackJob::refuse(const std::string& problem, const char* title) {
  services_.user.message(problem, Buttons::Ok, Icon::Critical, title);
  return false;
}

bool PackJob::mayWrite() {
  const platform::Files& files = services_.system.files;
  if (!kind_ || *kind_ == runtime::ArchiveKind::Ipk) {
    result_.unknownExtension = true;
    return refuse("Unrecognized Tar file extension", "Output file error..");
  }
  if (files.folderExists(result_.path)) return refuse("'" + result_.path + "' is a folder");
  if (files.isSpecial(result_.path)) return refuse("'" + result_.path + "' is not a file");
  return true;
}

bool PackJob::mayReplace() {
  replaces_ = services_.system.files.entryExists(result_.path);
  if (!replaces_) return true;
  return services_.user.message("'" + result_.path + "' already exists.\rOverwrite?", Buttons::YesNo,
                                Icon::None, runtime::programTitle,
                                Consequence::ReplacesSomething) == Answer::Yes;
}

/// Whether the run goes on; an append to a compressed archive becomes a new file when the user agrees.
bool PackJob::settleMode() {
  if (!settings_.append || result_.path.ends_with("tar")) return true;
  if (services_.user.message("Unable to append to a compressed tar archive\rCreate a new file instead?",
                             Buttons::OkCancel, Icon::None, "Unable to Append",
                             Consequence::MakesSomethingNew) != Answer::Ok)
    return false;
  settings_.append = false;
  result_.madeNew = true;
  return true;
}

JobEnd PackJob::create() {
  NameList list = nameList(services_.system.files, settings_, selection_);
  services_.cygwin.SetCygwinEnvironment();
  services_.api.SetCurDir(services_.cygwin.cygwinBin());
  const char mode = settings_.append ? 'r' : 'c';
  const JobEnd end =
      PackRun(services_, {settings_, *kind_, mode, std::move(list), insideUsr8(selection_), replaces_}).run();
  const auto& chosen = selection_.selectedPaths;
  if (end != JobEnd::Done || std::find(chosen.begin(), chosen.end(), result_.path) == chosen.end())
    return end;
  services_.log.append(" Not packed, it is the archive itself: " + result_.path);
  return JobEnd::Remarks;
}

}  // namespace archive
