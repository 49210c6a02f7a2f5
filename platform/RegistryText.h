#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace platform {

/// The text of a registry file. Lines end in LF or CR LF; each is blank, a comment behind ";" or "#", a
/// heading or a value below one:
///
///   [HKEY_LOCAL_MACHINE\SOFTWARE\Company\Program]
///   "name"="text"
///   "other"=dword:5
///
/// The other hive is HKEY_CURRENT_USER; a number is decimal. Names and texts escape `"`, `\` and control
/// characters: \" \\ \n \r \t \xHH. Of two values with the same name the later one counts.
class RegistryText {
 public:
  /// Takes over a file's bytes; the number of the first line that is none of the above, 0 for none.
  std::size_t read(std::string_view bytes);

  std::optional<RegistryValue> find(Hive hive, std::string_view key, std::string_view name) const;

  /// Changes or adds one line (and a heading); all other lines, comments too, stay as they are. False for
  /// what no line can say: a key with control characters, or a number that is none.
  bool set(Hive hive, std::string_view key, std::string_view name, const RegistryValue& value);

  std::string bytes() const;

 private:
  struct Line {
    std::string raw;      ///< with its line end
    std::string section;  ///< of the heading above (or its own), lower case; empty above the first one
    std::string name;     ///< of a value, lower case
    std::optional<RegistryValue> value;
    bool isHeading = false;
  };

  bool parse(Line& line) const;
  std::vector<Line>::const_iterator findLine(const std::string& section, std::string_view name) const;
  void insert(std::string heading, Line line);

  std::vector<Line> lines_;
};

}  // namespace platform
