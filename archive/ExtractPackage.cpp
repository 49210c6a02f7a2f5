#include "archive/ExtractPackage.h"

#include "archive/ExtractVerdict.h"
#include "archive/ScratchFolder.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

using runtime::withBackslashes;

/// ar itself writes a name that leads elsewhere without its folders.
bool staysBelow(const std::string& name) {
  return !name.starts_with('/') && ("/" + name).find("/../") == std::string::npos;
}

/// The folders on a name's way, from the top.
std::vector<std::string> foldersOf(const std::string& name) {
  std::vector<std::string> folders;
  for (std::size_t slash = name.find('/'); slash != name.npos; slash = name.find('/', slash + 1))
    folders.push_back(withBackslashes(name.substr(0, slash)));
  return folders;
}

}  // namespace

std::optional<std::vector<std::string>> unpackedWholly(const std::vector<GuardedMember>& members) {
  bool needed = false;
  std::set<std::string> names;
  std::set<std::string> folders;
  for (const GuardedMember& member : members) {
    needed = !names.insert(member.name).second || member.name.find('/') != std::string::npos || needed;
    if (!staysBelow(member.name)) continue;
    for (std::string& folder : foldersOf(member.name)) folders.insert(std::move(folder));
  }
  if (!needed) return std::nullopt;
  return std::vector<std::string>(folders.begin(), folders.end());
}

bool PackageMove::some(const std::vector<std::string>& members) const {
  const Names wanted(members.begin(), members.end());
  return moveBelow("", &wanted);
}

/// `folder` is empty or ends in "/".
bool PackageMove::moveBelow(const std::string& folder, const Names* wanted) const {
  const auto entries = services_.system.files.entries(from_ + '\\' + withBackslashes(folder));
  bool all = entries.has_value();
  for (const auto& entry : entries.value_or(std::vector<platform::Files::Entry>())) {
    if (services_.system.busy.stopRequested()) return false;
    const std::string name = folder + entry.name;
    if (entry.isFolder)
      all = moveBelow(name + '/', wanted) && all;
    else if (name != ScratchFolder::lockName && (wanted == nullptr || coverOf(*wanted, name) != nullptr))
      all = moveFile(name) && all;
  }
  return all;
}

bool PackageMove::moveFile(const std::string& name) const {
  const platform::Files& files = services_.system.files;
  for (const std::string& folder : foldersOf(name)) files.createFolder(outFolder_ + folder);
  const std::string target = outFolder_ + withBackslashes(name);
  if (files.rename(from_ + '\\' + withBackslashes(name), target)) return true;
  services_.log.append(" Unable to write file: " + target);
  return false;
}

}  // namespace archive
