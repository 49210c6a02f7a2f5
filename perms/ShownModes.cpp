#include "perms/ShownModes.h"

#include <algorithm>

#include "runtime/IsExecutable.h"
#include "runtime/PathBatches.h"
#include "runtime/Stepper.h"

namespace perms {
namespace {

using runtime::PermissionMode;
using Boxes = std::array<Box, modeBoxes>;

constexpr std::string_view letters = "rwxrwxrwx";
constexpr std::size_t ownerRead = 0;
constexpr const char* listing = "ls -ldn ";

/// Registry text that is no number counts as missing.
int numberOr(const std::string& text, int whenMissing, int whenNegative) {
  const int number = runtime::storedNumber(text).value_or(whenMissing);
  return number < 0 ? whenNegative : number;
}

Boxes boxesOfMode(const PermissionMode& mode) {
  Boxes boxes{};
  const int classes[] = {mode.owner, mode.group, mode.everyone};
  for (std::size_t i = 0; i < modeBoxes; ++i)
    if ((classes[i / 3] & (PermissionMode::read >> (i % 3))) != 0) boxes[i] = Box::Checked;
  return boxes;
}

Boxes boxesByKind(const runtime::Services& services, const std::vector<std::string>& paths) {
  const platform::Files& files = services.system.files;
  const bool executable =
      paths.size() == 1 && (files.folderExists(paths.front()) || runtime::IsExecutable(files, paths.front()));
  return boxesOfMode(executable ? runtime::executableMode : runtime::plainFileMode);
}

Boxes boxesOnDisk(const runtime::Services& services, const std::vector<std::string>& paths) {
  std::string output;
  for (const std::string& batch : runtime::pathBatches(paths)) {
    const runtime::ToolResult run = services.api.RunCapture(services.cygwin.cygwinBin(), listing + batch);
    if (run.stopped) return {};
    output += run.text;
  }
  if (paths.size() == 1)
    return output == runtime::startFailure ? Boxes{} : boxesOfMode(PermissionMode::fromModeField(output));
  return boxesOfLines(output, paths.size(), runtime::stepper(services));
}

}  // namespace

bool automaticByDefault(const runtime::Settings& settings) {
  return numberOr(settings.defaultPermissionMode(), 1, 0) == 1;
}

bool kindsByDefault(const runtime::Settings& settings) {
  return numberOr(settings.permissionOptions(), 1, 1) == 1;
}

ShownModes shownModes(const runtime::Services& services, const std::vector<std::string>& paths) {
  const platform::Files& files = services.system.files;
  ShownModes shown;
  shown.folderInvolved = std::any_of(paths.begin(), paths.end(),
                                     [&files](const std::string& path) { return files.folderExists(path); });
  shown.boxes =
      kindsByDefault(services.settings) ? boxesByKind(services, paths) : boxesOnDisk(services, paths);
  return shown;
}

std::array<Box, modeBoxes> boxesOfLines(std::string_view output, std::size_t items,
                                        const std::function<bool()>& goesOn) {
  const auto nextLine = [&output] {
    const std::size_t end = std::min(output.find('\n'), output.size());
    const std::string_view line = output.substr(0, end);
    output.remove_prefix(std::min(output.size(), end + 1));
    return line.substr(std::min<std::size_t>(1, line.size()), modeBoxes);
  };
  const std::string_view reference = nextLine();
  std::array<bool, modeBoxes> differs{};
  for (std::size_t line = 1; line < items; ++line) {
    const std::string_view other = nextLine();
    for (std::size_t i = 0; i < reference.size(); ++i)
      differs[i] = differs[i] || i >= other.size() || other[i] != reference[i];
    if (!goesOn()) break;
  }
  Boxes boxes{};
  for (std::size_t i = ownerRead + 1; i < reference.size(); ++i)
    boxes[i] = differs[i] ? Box::Mixed : reference[i] == letters[i] ? Box::Checked : Box::Clear;
  return boxes;
}

}  // namespace perms
