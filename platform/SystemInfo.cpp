#include "platform/SystemInfo.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace platform {
namespace {

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

/// Takes a number that ends at `end` (or with the text where that is NUL) off the front.
bool takeNumber(std::string_view& text, char end, int& number) {
  const std::size_t length = end == '\0' ? text.size() : text.find(end);
  if (length == std::string_view::npos) return false;
  const char* const last = text.data() + length;
  const auto [stop, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc() || stop != last || number < 0) return false;
  text.remove_prefix(end == '\0' ? length : length + 1);
  return true;
}

bool mayChangeOwners() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
  if (syscall(SYS_capget, &header, sets) != 0) return false;
  return (sets[CAP_TO_INDEX(CAP_CHOWN)].effective & CAP_TO_MASK(CAP_CHOWN)) != 0;
}

}  // namespace

std::optional<SystemVersion> systemVersion() {
  std::string_view text = variable("PAKRUNE_WINVER");
  if (text.empty()) return SystemVersion{2, 10, 0};
  SystemVersion version{};
  const bool read = takeNumber(text, '.', version.platformId) && takeNumber(text, '.', version.major) &&
                    takeNumber(text, '\0', version.minor);
  return read ? std::optional(version) : std::nullopt;
}

bool isUserAnAdmin() {
  const std::string_view answer = variable("PAKRUNE_ADMIN");
  if (answer == "0" || answer == "1") return answer == "1";
  return geteuid() == 0 || mayChangeOwners();
}

}  // namespace platform
