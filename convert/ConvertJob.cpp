#include "convert/ConvertJob.h"

#include <set>

#include "platform/ResolvedPath.h"
#include "runtime/MissingTool.h"
#include "runtime/PathBatches.h"

namespace convert {
namespace {

using runtime::Buttons;
using runtime::Icon;
using runtime::JobEnd;

constexpr const char* tool = "dos2unix.exe";
constexpr const char* command = "dos2unix.exe --safe -U  ";
constexpr std::string_view allDone = "done.";
constexpr std::string_view skippedOne = "skipping binary file";

/// From the second character on.
std::size_t countSkipped(std::string_view output) {
  std::size_t count = 0;
  for (std::size_t at = output.find(skippedOne, 1); at != output.npos; at = output.find(skippedOne, at + 1))
    ++count;
  return count;
}

}  // namespace

ConvertJob::ConvertJob(const runtime::Services& services, ConvertItems items, std::function<void()> begun)
    : services_(services), items_(std::move(items)), begun_(std::move(begun)) {}

std::string ConvertJob::target() const {
  return std::to_string(items_.paths.size()) + " files in " + items_.folder;
}

bool ConvertJob::toolFound() const {
  const std::string path = runtime::withTrailingBackslash(services_.cygwin.cygwinBin()) + tool;
  if (services_.system.files.fullName(path) == tool) return true;
  runtime::tellToolMissing(services_.user, tool, "Unable to Convert File");
  return false;
}

bool ConvertJob::agreed() const {
  return services_.user.message("This will convert the line endings on " +
                                    std::to_string(items_.paths.size()) +
                                    " selected files to unix format.\r\nAre you sure you want to do this?",
                                Buttons::OkCancel, Icon::None, "dos2unix..",
                                runtime::Consequence::ReplacesSomething) == runtime::Answer::Ok;
}

ConvertResult ConvertJob::run() {
  if (!toolFound()) return {JobEnd::Refused, 0};
  if (!items_.paths.empty() && !agreed()) return {JobEnd::Refused, 0};
  const JobEnd end = items_.paths.empty() ? JobEnd::Failed : convertAll();
  if (end == JobEnd::Done) {
    tellSuccess();
    services_.log.append(" dos2unix successfull: " + target());
  } else {
    services_.log.append(" FAILED to convert to unix: " + target());
  }
  return {end, skipped_};
}

/// Those of the files, and of what links among them lead to.
void ConvertJob::findFolders() {
  std::set<std::string> folders;
  for (const std::string& path : items_.paths) {
    folders.insert(runtime::getFilePath(path));
    folders.insert(runtime::getFilePath(platform::resolvedFolder(services_.system.drives, path)));
  }
  folders.erase("");
  folders_.assign(folders.begin(), folders.end());
}

JobEnd ConvertJob::convertAll() {
  if (begun_) begun_();
  findFolders();
  const std::vector<std::string> batches = runtime::pathBatches(items_.paths);
  for (std::size_t i = 0; i < batches.size(); ++i) {
    const JobEnd end = convertBatch(batches[i]);
    if (end == JobEnd::Stopped)
      services_.log.append(" Stopped: converting, after " + std::to_string(i) + " of " +
                           std::to_string(batches.size()) + " runs");
    if (end != JobEnd::Done) return end;
  }
  return JobEnd::Done;
}

JobEnd ConvertJob::convertBatch(const std::string& batch) {
  const runtime::ToolResult run = services_.api.RunCapture(services_.cygwin.cygwinBin(), command + batch, {},
                                                           runtime::mayChange(folders_));
  if (run.stopped) return JobEnd::Stopped;
  if (run.text == runtime::startFailure) return fail("Unable to convert files to unix format");
  if (run.text.find(allDone) == std::string::npos)
    return fail(run.text.empty() ? runtime::howItEnded(run, "dos2unix") : run.text);
  if (!run.good()) return fail(runtime::howItEnded(run, "dos2unix"));
  skipped_ += countSkipped(run.text);
  return JobEnd::Done;
}

JobEnd ConvertJob::fail(const std::string& text) const {
  services_.user.message(text, Buttons::Ok, Icon::Critical, "Error..");
  return JobEnd::Failed;
}

void ConvertJob::tellSuccess() const {
  std::string text = "Converted " +
                     std::to_string(items_.paths.size() - std::min(skipped_, items_.paths.size())) +
                     " file(s) to unix line endings.";
  if (skipped_ > 0) text += "\rSkipped " + std::to_string(skipped_) + " binary file(s).";
  services_.user.message(text, Buttons::Ok, Icon::Information, "dos2unix Finished Successfully");
}

}  // namespace convert
