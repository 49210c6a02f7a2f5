#include "perms/PermissionUndo.h"

#include <algorithm>

#include "platform/EntryModes.h"
#include "runtime/Stepper.h"

namespace perms {
namespace {

using platform::EntryModes;

std::ptrdiff_t depthOf(const PermissionUndo::Entry& entry) {
  return std::count(entry.path.begin(), entry.path.end(), '\\');
}

/// Neighbours stay neighbours, so that each folder is entered once.
void sortDeepestFirst(std::vector<PermissionUndo::Entry>& entries) {
  std::vector<std::pair<std::ptrdiff_t, std::size_t>> order;
  for (std::size_t i = 0; i < entries.size(); ++i) order.emplace_back(-depthOf(entries[i]), i);
  std::sort(order.begin(), order.end());
  std::vector<PermissionUndo::Entry> sorted;
  for (const auto& [depth, place] : order) sorted.push_back(std::move(entries[place]));
  entries = std::move(sorted);
}

}  // namespace

void PermissionUndo::add(ItemTree& tree, const std::vector<Effect>& effects) {
  for (std::size_t i = 0; i < tree.size(); ++i) {
    const Effect& effect = effects[i];
    if (effect.before != effect.after || effect.before != effect.between)
      entries.push_back({std::move(tree[i].path), effect});
  }
}

UndoJob::UndoJob(const runtime::Services& services, PermissionUndo undo)
    : services_(services), undo_(std::move(undo)) {
  sortDeepestFirst(undo_.entries);
}

UndoResult UndoJob::run() {
  UndoResult result;
  EntryModes modes(services_.system.drives, undo_.folder);
  const auto goesOn = runtime::stepper(services_);
  for (const auto& [path, effect] : undo_.entries) {
    if (!goesOn()) {
      result.end = runtime::JobEnd::Stopped;
      services_.log.append(" Stopped: Undo Set Permissions");
      break;
    }
    bool asBefore = false;
    const auto wanted = [&, &of = effect](unsigned mode) {
      asBefore = mode == of.before;
      return !asBefore && (mode == of.after || (!undo_.whole && mode == of.between));
    };
    const EntryModes::Result set = modes.set(path, effect.before, wanted);
    if (set == EntryModes::Result::Set)
      ++result.restored;
    else if (!asBefore)
      ++result.left;
  }
  services_.log.append(" Undo Set Permissions: " + std::to_string(result.restored) + " restored, " +
                       std::to_string(result.left) + " left as they are");
  return result;
}

}  // namespace perms
