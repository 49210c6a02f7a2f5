#include "shell/Options.h"

#include <string>

namespace shell {
namespace {

constexpr int neither = -1;

std::string flag(bool on) { return on ? "1" : "0"; }

int choiceOf(const std::string& text, int fallback) {
  const int number = runtime::storedNumber(text).value_or(neither);
  return number < 0 ? fallback : number;
}

std::string choiceText(int choice) { return std::to_string(choice == 0 || choice == 1 ? choice : neither); }

}  // namespace

Options readOptions(const runtime::Settings& settings) {
  Options options;
  const std::string context = settings.contextOptions();
  options.useExtension = context.starts_with('1');
  for (std::size_t i = 0; i < Options::menuItems && i + 1 < context.size(); ++i)
    options.items[i] = context[i + 1] == '1';
  options.permissionMode = choiceOf(settings.defaultPermissionMode(), Options::manual);
  options.permissions = choiceOf(settings.permissionOptions(), Options::byKind);
  options.usr8 = runtime::storedNumber(settings.usr8()).value_or(1) > 0;
  return options;
}

void saveOptions(runtime::Settings& settings, const Options& options) {
  std::string context = flag(options.useExtension);
  for (const bool item : options.items) context += flag(item);
  settings.setContextOptions(context);
  settings.setDefaultPermissionMode(choiceText(options.permissionMode));
  settings.setPermissionOptions(choiceText(options.permissions));
  settings.setUsr8(flag(options.usr8));
}

}  // namespace shell
