#include "perms/ModeChanges.h"

#include <algorithm>
#include <map>

#include "runtime/PermissionMode.h"

namespace perms {
namespace {

constexpr unsigned ownerRead = 0400;
constexpr unsigned executable = 0755;

/// One effect a file, however many names it has.
class Files {
 public:
  std::size_t placeOf(const TreeEntry& entry) {
    const bool single = entry.file.second == 0;
    const auto place = single ? byFile_.end() : byFile_.try_emplace(entry.file, effects_.size()).first;
    if (place != byFile_.end() && place->second < effects_.size()) return place->second;
    effects_.push_back({entry.mode, entry.mode, entry.mode});
    reached_.push_back(false);
    return effects_.size() - 1;
  }
  void set(std::size_t place, unsigned mode) {
    if (!reached_[place]) effects_[place].between = mode;
    reached_[place] = true;
    effects_[place].after = mode;
  }
  const Effect& effect(std::size_t place) const { return effects_[place]; }

 private:
  std::map<std::pair<unsigned long long, unsigned long long>, std::size_t> byFile_;
  std::vector<Effect> effects_;
  std::vector<bool> reached_;
};

bool isForeign(const TreeEntry& entry, const platform::Caller& caller) {
  return !caller.root && entry.user != caller.user;
}

ModeChange::Note noteOf(const TreeEntry& entry, const ItemPlan& plan, const platform::Caller& caller) {
  if (entry.closed) return ModeChange::Note::ToBeOpened;
  const bool unreadable = !caller.root && (entry.mode & ownerRead) == 0;
  if (!entry.isFolder && !entry.isExecutable && unreadable && decidesByKind(plan))
    return ModeChange::Note::MaybeExecutable;
  return ModeChange::Note::None;
}

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

}  // namespace

std::vector<std::vector<Effect>> effectsOf(const std::vector<ItemTree>& trees,
                                           const std::vector<ItemPlan>& plans,
                                           const platform::Caller& caller) {
  Files files;
  std::vector<std::vector<std::size_t>> places(trees.size());
  for (std::size_t item = 0; item < trees.size(); ++item)
    for (const TreeEntry& entry : trees[item]) places[item].push_back(files.placeOf(entry));
  for (std::size_t item = 0; item < trees.size(); ++item)
    for (const PlanStep& step : plans[item].steps)
      for (std::size_t i = 0; i < trees[item].size(); ++i) {
        const TreeEntry& entry = trees[item][i];
        const std::size_t place = places[item][i];
        if (reaches(step, entry, caller))
          files.set(place, modeAfter(step, entry, files.effect(place).after, caller));
      }
  std::vector<std::vector<Effect>> effects(trees.size());
  for (std::size_t item = 0; item < trees.size(); ++item)
    for (const std::size_t place : places[item]) effects[item].push_back(files.effect(place));
  return effects;
}

std::string ModeChange::text() const {
  const std::string change = modeLetters(before) + " -> " + modeLetters(after);
  switch (note) {
    case Note::ToBeOpened:
      return change + ", to be opened";
    case Note::MaybeExecutable:
      return change + " or " + modeLetters(executable) + ", cannot be read yet";
    default:
      return change;
  }
}

std::string ModeChanges::countText() const {
  std::string text = counted(list.size(), "entry changes, ", "entries change, ") +
                     counted(unchanged, "stays as it is", "stay as they are");
  if (foreign > 0) text += " (" + counted(foreign, "belongs", "belong") + " to somebody else)";
  return text;
}

ModeChanges changesOf(std::vector<ItemTree> trees, const std::vector<ItemPlan>& plans,
                      const platform::Caller& caller) {
  const auto effects = effectsOf(trees, plans, caller);
  ModeChanges changes;
  for (std::size_t item = 0; item < trees.size(); ++item)
    for (std::size_t i = 0; i < trees[item].size(); ++i) {
      TreeEntry& entry = trees[item][i];
      const auto& [before, between, after] = effects[item][i];
      const ModeChange::Note note = noteOf(entry, plans[item], caller);
      const bool foreign = isForeign(entry, caller);
      if (foreign) ++changes.foreign;
      if (before != after || (note != ModeChange::Note::None && !foreign))
        changes.list.push_back({std::move(entry.path), entry.isFolder, before, after, note});
      else
        ++changes.unchanged;
    }
  std::stable_partition(changes.list.begin(), changes.list.end(),
                        [](const ModeChange& change) { return change.isFolder; });
  return changes;
}

}  // namespace perms
