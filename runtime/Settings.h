#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Registry.h"
#include "runtime/UserInterface.h"

namespace runtime {

/// A text value up to its first NUL; `fallback` when it is missing or no text.
std::string registryText(const platform::Registry& registry, platform::Hive hive, std::string_view key,
                         std::string_view name, std::string_view fallback = {});

/// The number that a stored text is; nullopt for an empty one and for any other text.
std::optional<int> storedNumber(std::string_view text);

/// Every stored setting under its name. Nothing is cached: each read asks the registry.
class Settings {
 public:
  Settings(platform::Registry& registry, platform::UserSettings& user, Log& log);

  bool firstRun() const;  ///< "FirstRun" is exactly "1"
  void dontShowAgain();   ///< "FirstRun" = "0"
  std::string contextOptions() const;
  std::string defaultPermissionMode() const;
  std::string permissionOptions() const;
  std::string usr8() const;
  std::string initDir() const;
  void setInitDir(const std::string& folder);
  std::string lastIP() const;
  void setLastIP(const std::string& address);
  std::string lastAddresses() const;  ///< in lines; download/KnownAddresses reads them
  void setLastAddresses(const std::string& lines);
  /// How the windows were left: what a window keeps there is its own affair.
  std::string look(std::string_view what) const;
  void setLook(std::string_view what, const std::string& text);
  void setContextOptions(const std::string& text);
  void setDefaultPermissionMode(const std::string& text);
  void setPermissionOptions(const std::string& text);
  void setUsr8(const std::string& text);

  /// Text values of the registry; a failed write is a log line "ERROR: Unable to write to registry".
  void RegWriteString(platform::Hive hive, std::string_view key, std::string_view name,
                      std::string_view text);
  std::string RegReadString(platform::Hive hive, std::string_view key, std::string_view name,
                            std::string_view fallback = {}) const;

 private:
  std::string option(std::string_view name) const;
  void setOption(std::string_view name, const std::string& text);
  std::string userValue(std::string_view name) const;
  void setUserValue(std::string_view name, const std::string& text);

  platform::Registry& registry_;
  platform::UserSettings& user_;
  Log& log_;
};

}  // namespace runtime
