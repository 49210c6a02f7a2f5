#include "platform/Confinement.h"

#include <unistd.h>

#include <utility>

#include "platform/ChildProcess.h"
#include "platform/ConfinementWords.h"

namespace platform {
namespace {

struct Layer {
  bool ConfinementLayers::*flag;
  const char* word;
  const char* name;  ///< for a person
};
constexpr Layer allLayers[] = {
    {&ConfinementLayers::mounts, mountsWord, "read-only mounts"},
    {&ConfinementLayers::processes, processesWord, "processes of its own"},
    {&ConfinementLayers::landlock, landlockWord, "Landlock"},
    {&ConfinementLayers::calls, callsWord, "a system-call filter"},
};

std::vector<std::string> wordsOf(const std::string& launcher, const ConfinementLayers& layers) {
  std::vector<std::string> words{launcher, parentWord + std::to_string(getpid())};
  for (const Layer& layer : allLayers)
    if (layers.*layer.flag) words.emplace_back(layer.word);
  return words;
}

/// The launcher is its own program to try with, and what this run may change: a folder could be "/".
bool holds(const std::string& launcher, const ConfinementLayers& layers) {
  std::vector<std::string> words = wordsOf(launcher, layers);
  words.push_back(writeWord + launcher);
  for (const char* const word : {"--", launcher.c_str(), "confine", probeWord}) words.emplace_back(word);
  ChildProcess::Failure failure{};
  int error = 0;
  auto child = ChildProcess::start({launcher, std::move(words), {}, "/"}, failure, error);
  return child && child->status() == 0;
}

/// Each layer may be missing, and may fail beside another one.
ConfinementLayers tryOut(const std::string& launcher) {
  ConfinementLayers layers{true, true, true, true};
  if (holds(launcher, layers)) return layers;
  layers = {};
  for (const Layer& layer : allLayers) {
    layers.*layer.flag = true;
    layers.*layer.flag = holds(launcher, layers);
  }
  return layers;
}

}  // namespace

Confinement::Confinement(std::string launcher)
    : launcher_(std::move(launcher)), offered_(tryOut(launcher_)) {}

std::string Confinement::missing() const {
  if (offered_ == ConfinementLayers{}) return "Tools are not confined: this system offers nothing for it";
  std::string names;
  for (const Layer& layer : allLayers)
    if (!(offered_.*layer.flag)) names += (names.empty() ? "" : ", ") + std::string(layer.name);
  return names.empty() ? names : "Tools are confined in part, this system does not offer: " + names;
}

std::optional<std::vector<std::string>> Confinement::wordsBefore(const std::string& program,
                                                                 const MayChange& mayChange,
                                                                 const DriveTable& drives,
                                                                 bool reporting) const {
  ConfinementLayers layers = offered_;
  if (mayChange.foreignOwners && geteuid() != 0) layers.mounts = layers.processes = false;
  if (layers == ConfinementLayers{}) return std::vector<std::string>{};
  std::vector<std::string> words = wordsOf(launcher_, layers);
  if (reporting) words.emplace_back(reportWord);
  for (const std::string& folder : mayChange.folders) {
    const std::optional<std::string> host = drives.toHost(folder);
    if (!host) return std::nullopt;
    words.push_back(writeWord + *host);
  }
  words.emplace_back("--");
  words.push_back(program);
  return words;
}

}  // namespace platform
