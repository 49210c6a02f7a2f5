#include "runtime/Settings.h"

#include <charconv>

namespace runtime {
namespace {

using platform::Hive;
using platform::ValueType;

constexpr const char* programKey = "SOFTWARE\\Halvoren Inc\\Pakrune";
constexpr const char* application = "Halvoren";
constexpr const char* writeFailed = "ERROR: Unable to write to registry";

}  // namespace

std::string registryText(const platform::Registry& registry, Hive hive, std::string_view key,
                         std::string_view name, std::string_view fallback) {
  const auto value = registry.read(hive, key, name);
  if (!value || value->type != ValueType::Text) return std::string(fallback);
  return value->text.substr(0, value->text.find('\0'));
}

std::optional<int> storedNumber(std::string_view text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [read, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && read == end ? std::optional(number) : std::nullopt;
}

Settings::Settings(platform::Registry& registry, platform::UserSettings& user, Log& log)
    : registry_(registry), user_(user), log_(log) {}

void Settings::RegWriteString(Hive hive, std::string_view key, std::string_view name, std::string_view text) {
  if (!registry_.write(hive, key, name, {ValueType::Text, std::string(text)})) log_.append(writeFailed);
}

std::string Settings::RegReadString(Hive hive, std::string_view key, std::string_view name,
                                    std::string_view fallback) const {
  return registryText(registry_, hive, key, name, fallback);
}

std::string Settings::option(std::string_view name) const {
  return RegReadString(Hive::LocalMachine, programKey, name);
}

void Settings::setOption(std::string_view name, const std::string& text) {
  RegWriteString(Hive::LocalMachine, programKey, name, text);
}

std::string Settings::userValue(std::string_view name) const {
  return user_.read(application, programTitle, name);
}

void Settings::setUserValue(std::string_view name, const std::string& text) {
  if (!user_.write(application, programTitle, name, text)) log_.append(writeFailed);
}

bool Settings::firstRun() const { return option("FirstRun") == "1"; }
void Settings::dontShowAgain() { setOption("FirstRun", "0"); }

std::string Settings::contextOptions() const { return option("ContextOptions"); }
void Settings::setContextOptions(const std::string& text) { setOption("ContextOptions", text); }

std::string Settings::defaultPermissionMode() const { return option("DPermissionMode"); }
void Settings::setDefaultPermissionMode(const std::string& text) { setOption("DPermissionMode", text); }

std::string Settings::permissionOptions() const { return option("PermissionOptions"); }
void Settings::setPermissionOptions(const std::string& text) { setOption("PermissionOptions", text); }

std::string Settings::usr8() const { return option("usr8"); }
void Settings::setUsr8(const std::string& text) { setOption("usr8", text); }

std::string Settings::initDir() const { return userValue("initDir"); }
void Settings::setInitDir(const std::string& folder) { setUserValue("initDir", folder); }

std::string Settings::lastIP() const { return userValue("lastIP"); }
void Settings::setLastIP(const std::string& address) { setUserValue("lastIP", address); }

std::string Settings::lastAddresses() const { return userValue("lastAddresses"); }
void Settings::setLastAddresses(const std::string& lines) { setUserValue("lastAddresses", lines); }

std::string Settings::look(std::string_view what) const { return userValue(what); }
void Settings::setLook(std::string_view what, const std::string& text) { setUserValue(what, text); }

}  // namespace runtime
