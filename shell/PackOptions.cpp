#include "shell/PackOptions.h"

#include <charconv>
#include <cstdint>

#include "runtime/OwnerEntries.h"

namespace shell {
namespace {

constexpr const char* keep = "keep";
constexpr std::int64_t mostId = 2097151;               // what a tar header holds in digits
constexpr std::int64_t mostSeconds = (1LL << 33) - 1;  // likewise
constexpr std::int64_t mostUmask = 0777;

/// The whole text is digits and no larger than `most`.
std::optional<std::int64_t> numberIn(const std::string& text, std::int64_t most, int base = 10) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number, base);
  const bool whole = read.ec == std::errc() && read.ptr == end && !text.starts_with('-');
  return whole && number <= most ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> accountNumber(const std::string& text) {
  for (const runtime::OwnerEntry& entry : runtime::ownerEntries())
    if (text == entry.name) return entry.id;
  return numberIn(text, mostId);
}

std::string cannotBe(const char* what, const std::string& text, const char* wanted) {
  return std::string(what) + " cannot be '" + text + "': " + wanted;
}

std::string applyOwner(const std::string& text, archive::PackSettings& settings) {
  settings.setOwner = text != keep;
  if (!settings.setOwner) return {};
  const auto number = accountNumber(text);
  if (!number) return cannotBe("--owner", text, "an account of the terminal, a number, or keep");
  settings.ownerId = static_cast<int>(*number);
  return {};
}

std::string applyGroup(const std::string& text, archive::PackSettings& settings) {
  settings.setGroup = text != keep;
  if (!settings.setGroup) return {};
  const auto number = numberIn(text, mostId);
  if (!number) return cannotBe("--group", text, "a number, or keep");
  settings.groupId = static_cast<int>(*number);
  return {};
}

std::string applyTime(const char* name, const std::string& text, archive::PackSettings& settings) {
  settings.time = numberIn(text, mostSeconds);
  return settings.time ? "" : cannotBe(name, text, "seconds since 1970");
}

std::string applyUmask(const std::string& text, archive::PackSettings& settings) {
  const auto bits = numberIn(text, mostUmask, 8);
  if (!bits) return cannotBe("--umask", text, "an octal number up to 777");
  settings.umask = static_cast<unsigned>(*bits);
  return {};
}

}  // namespace

std::string applyOptions(const PackOptions& options, const std::string& sourceDateEpoch,
                         archive::PackSettings& settings) {
  if (options.output && options.output->empty()) return "--output needs a path";
  if (options.output) settings.outputPath = *options.output;
  std::string problem;
  if (options.owner) problem = applyOwner(*options.owner, settings);
  if (problem.empty() && options.group) problem = applyGroup(*options.group, settings);
  if (problem.empty() && options.umask) problem = applyUmask(*options.umask, settings);
  if (!problem.empty()) return problem;
  if (options.time) return applyTime("--time", *options.time, settings);
  return sourceDateEpoch.empty() ? "" : applyTime("SOURCE_DATE_EPOCH", sourceDateEpoch, settings);
}

}  // namespace shell
