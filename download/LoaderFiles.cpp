#include "download/LoaderFiles.h"

#include "download/SerialSettings.h"
#include "platform/TypedPath.h"
#include "runtime/DirExists.h"

namespace download {
namespace {

constexpr std::size_t mostSettings = 4096;  // bytes; no settings file of ours comes near

std::string userDataFolder(const platform::System& system) {
  const std::string named = system.environment.get("XDG_DATA_HOME");
  const std::string host = named.starts_with('/') ? named : platform::homeFolder() + "/.local/share";
  return system.drives.toWindows(host + "/pakrune") + "\\";
}

}  // namespace

LoaderFiles::LoaderFiles(const runtime::Services& services)
    : files_(services.system.files), folders_{services.cygwin.GetEXEPath()} {
  const bool installed = files_.writeProblem(folders_.front()) != 0;
  if (installed) folders_.insert(folders_.begin(), userDataFolder(services.system));
}

std::string LoaderFiles::found(const char* name) const {
  for (const std::string& folder : folders_)
    if (files_.fileExists(folder + name)) return folder + name;
  return {};
}

std::string LoaderFiles::loader() const { return found(loaderName); }

std::optional<std::string> LoaderFiles::settings() const {
  const std::string path = found(settingsFile);
  if (path.empty()) return std::nullopt;
  return files_.readBytes(path, mostSettings).value_or("");
}

void LoaderFiles::saveSettings(const std::string& text) const {
  std::string folder = folders_.front();
  runtime::DirExists(files_, folder);
  files_.writeText(folders_.front() + settingsFile, text);
}

}  // namespace download
