#include "perms/Executables.h"

#include <atomic>
#include <thread>

#include "platform/DirectorySearch.h"
#include "platform/FileStarts.h"
#include "platform/FolderContents.h"
#include "runtime/IsExecutable.h"

namespace perms {
namespace {

struct Candidate {
  std::string path;
  bool isRegular;
  bool executable = false;
};

/// The noted attributes are asked for last: that costs as much as the rest.
bool isListedExecutable(const Candidate& file, const platform::DriveTable& drives,
                        platform::FileStarts& starts) {
  const std::string_view path = file.path;
  const std::string_view name = path.substr(path.rfind('\\') + 1);
  const std::string_view folder = path.substr(0, path.size() - name.size());
  if (name.starts_with('.')) return false;
  const bool executable =
      runtime::IsExecutableName(path) ||
      (file.isRegular && runtime::startsAsExecutable(starts.read(folder, name, runtime::executableStart)));
  return executable && !platform::isHiddenOrSystem(drives, path);
}

/// Opening a hundred thousand files is what takes the time, and two processors do it in half of it. Only this
/// thread asks `goesOn`; where that says no, the rest counts as none.
void testAll(const platform::DriveTable& drives, std::vector<Candidate>& files,
             const std::function<bool()>& goesOn) {
  constexpr std::size_t perTurn = 64;
  std::atomic<std::size_t> next = 0;
  const auto test = [&](const std::function<bool()>& mayGoOn) {
    platform::FileStarts starts(drives);
    for (std::size_t at = next.fetch_add(perTurn); at < files.size(); at = next.fetch_add(perTurn))
      for (std::size_t i = at; i < std::min(files.size(), at + perTurn); ++i) {
        if (!mayGoOn()) next = files.size();
        files[i].executable = isListedExecutable(files[i], drives, starts);
      }
  };
  const std::jthread other([&] { test([] { return true; }); });
  test(goesOn);
}

/// The files of a folder, then those of each subfolder, in the system's order.
std::vector<Candidate> candidatesBelow(const platform::DriveTable& drives, const std::string& folder,
                                       const std::function<bool()>& goesOn) {
  std::vector<Candidate> files;
  std::vector<std::string> pending = {folder};
  while (!pending.empty() && goesOn()) {
    const std::string inside = std::move(pending.back()) + '\\';
    pending.pop_back();
    const auto contents = platform::contentsOf(drives, inside);
    if (!contents) continue;
    for (const auto& [name, isRegular] : contents->others) files.push_back({inside + name, isRegular});
    for (auto name = contents->folders.rbegin(); name != contents->folders.rend(); ++name)
      pending.push_back(inside + *name);
  }
  return files;
}

}  // namespace

std::vector<std::string> findExecutables(const platform::Files& files, const std::string& folder,
                                         const std::function<bool()>& goesOn) {
  std::vector<Candidate> candidates = candidatesBelow(files.drives(), folder, goesOn);
  testAll(files.drives(), candidates, goesOn);
  std::vector<std::string> found;
  for (Candidate& file : candidates)
    if (file.executable) found.push_back(std::move(file.path));
  return found;
}

void markExecutables(const platform::Files& files, ItemTree& tree, const std::function<bool()>& goesOn) {
  std::vector<Candidate> candidates;
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < tree.size(); ++i) {
    if (tree[i].isFolder) continue;
    candidates.push_back({tree[i].path, tree[i].isRegular});
    places.push_back(i);
  }
  testAll(files.drives(), candidates, goesOn);
  for (std::size_t i = 0; i < places.size(); ++i) tree[places[i]].isExecutable = candidates[i].executable;
}

}  // namespace perms
