#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The accounts of the terminal, whose names mean nothing on this machine.
class TerminalAccounts {
 public:
  /// `etcFolder` holds passwd and group; without one of them the built-in list stands in for it.
  explicit TerminalAccounts(std::string etcFolder) : etc_(std::move(etcFolder)) {}

  std::optional<std::string> userNumber(std::string_view name) const;
  std::optional<std::string> groupNumber(std::string_view name) const;

  /// "OWNER", "OWNER:GROUP" or ":GROUP" with each known name as its number; the rest stays as it is.
  std::string ownerInNumbers(std::string_view owner) const;
  std::string groupInNumbers(std::string_view group) const;

 private:
  std::string etc_;
};
