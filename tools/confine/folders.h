#pragma once

#include <optional>
#include <string>
#include <vector>

namespace confine {

/// What folders really are, links followed, each once and none that lies in another one: so a rename from one
/// into the other stays possible. nullopt: one does not exist (errno).
std::optional<std::vector<std::string>> resolvedFolders(const std::vector<const char*>& folders);

}  // namespace confine
