#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace archive {

/// What a package's control file says of it. The texts are as written, but for the blanks around them; what
/// it does not say is empty.
struct PackageControl {
  std::string package;
  std::string version;
  std::string architecture;
  std::string installedSize;  ///< kilobytes or bytes, as the tool that made the package has it
};

constexpr std::size_t longestControl = 64 * 1024;  ///< bytes of a control file that is read

/// The first paragraph of a control file: "Field: value" a line, whatever the case of the field; lines that
/// begin with a blank go on with the one before. nullopt: it names no package, or is too long.
std::optional<PackageControl> parsePackageControl(std::string_view text);

/// What the verbose listing of a package's control archive shows.
struct ControlMembers {
  std::string control;               ///< the control file's name in it; empty: there is none that is read
  std::vector<std::string> scripts;  ///< the maintainer scripts, in the order in which they run
};
ControlMembers controlMembers(std::string_view verboseListing);

/// The line of the log that tells of a package; whatever bytes it holds, it is one line.
std::string packageLine(const PackageControl& control, const std::vector<std::string>& scripts);

}  // namespace archive
