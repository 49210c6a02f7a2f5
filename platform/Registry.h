#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

enum class Hive { LocalMachine, CurrentUser };
enum class ValueType { Text, Number };  ///< REG_SZ (1) and REG_DWORD (4)

struct RegistryValue {
  ValueType type = ValueType::Text;
  std::string text;  ///< as stored; a number in decimal
};

/// The registry, in a plain text file that a person can read and edit: a "[HIVE\key]" line, below it
/// "name"="text" or "name"=dword:5 lines (see RegistryText.h). Per user under the XDG configuration folder,
/// with read-only site defaults below /etc/pakrune. Keys and names compare without case. Nothing is cached.
/// Writes are atomic (new file, then rename; a link stays a link) and locked against a second instance (a
/// ".lock" file beside the file). A damaged user's file is set aside beside itself (".damaged", numbered
/// when taken) and reported, never overwritten; one that cannot be read is reported once and never replaced.
class Registry {
 public:
  using Report = std::function<void(const std::string&)>;  ///< a line for the log

  /// Host paths of the two files. `report` may be empty.
  Registry(std::string userFile, std::string siteFile, Report report = {});
  /// $XDG_CONFIG_HOME/pakrune/registry.txt (or ~/.config/...) and /etc/pakrune/registry.txt.
  static Registry forUser(Report report = {});
  void setReport(Report report) { report_ = std::move(report); }

  std::optional<RegistryValue> read(Hive hive, std::string_view key, std::string_view name) const;
  /// Makes missing keys. False when it could not be written; then the old value stands.
  bool write(Hive hive, std::string_view key, std::string_view name, const RegistryValue& value);

 private:
  enum class Often { Once, Always };
  struct News {
    std::string line;  ///< empty: none
    Often often = Often::Once;
  };

  void tell(const News& news) const;
  News setAside(bool locked) const;
  bool change(Hive hive, std::string_view key, std::string_view name, const RegistryValue& value, News& news);

  std::string userFile_;
  std::string siteFile_;
  Report report_;
  mutable std::set<std::string> told_;
};

/// The per-user settings store: application, section, key. Kept in the CurrentUser hive under
/// `Settings\APPLICATION\SECTION`.
class UserSettings {
 public:
  explicit UserSettings(Registry& registry) : registry_(registry) {}
  std::string read(std::string_view application, std::string_view section, std::string_view key,
                   std::string_view fallback = {}) const;
  bool write(std::string_view application, std::string_view section, std::string_view key,
             std::string_view text);

 private:
  Registry& registry_;
};

}  // namespace platform
