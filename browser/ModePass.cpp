#include "browser/ModePass.h"

#include <algorithm>

#include "runtime/LsLine.h"

namespace browser {

std::string modeCommand(const std::vector<std::string>& names, std::size_t first, std::size_t count) {
  std::string command = "ls.exe -lnd --sort=none --group-directories-first ";
  for (std::size_t i = first; i < first + count; ++i)
    command += (names[i].starts_with('-') ? "\"./" : "\"") + names[i] + "\" ";
  return command;
}

std::vector<std::string> modesOf(std::string_view output, std::size_t count) {
  std::vector<std::string> modes = runtime::lsLines(output);
  modes.resize(std::min(modes.size(), count));
  for (std::string& line : modes) line = runtime::lsModeColumn(line);
  return modes;
}

void runModePass(runtime::modAPI& api, const std::string& toolFolder, const std::string& folder,
                 const std::vector<std::string>& names, const ModesReady& ready) {
  for (std::size_t first = 0; first < names.size(); first += modeBatch) {
    const std::size_t count = std::min(modeBatch, names.size() - first);
    const std::string output = api.RunCapture(toolFolder, modeCommand(names, first, count), folder).text;
    if (!ready(first, modesOf(output, count))) return;
  }
}

}  // namespace browser
