#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kt500sim {

/// What the simulated terminal does; the last group are faults on demand.
struct Options {
  std::string listenAddress = "127.0.0.1";
  std::uint16_t port = 5142;  ///< 0: any free one
  std::string root = "kt500";
  std::optional<std::uint64_t> free;           ///< bytes; without it what the root's file system has left
  bool install = false;                        ///< unpacks received archives
  std::optional<std::uint64_t> count;          ///< connections to serve; without it no end
  std::chrono::milliseconds timeout{30000};    ///< of a client that says nothing
  std::chrono::milliseconds limit{3'600'000};  ///< for all that one client may take

  std::optional<std::string> reply;  ///< instead of the terminal's own
  bool silent = false;
  std::chrono::milliseconds delay{0};
  bool splitReply = false;
  std::optional<std::uint64_t> closeAfter;  ///< bytes of data
  std::optional<std::uint64_t> readRate;    ///< bytes a second
};

struct ReadOptions {
  Options options;
  bool help = false;
  std::string error;  ///< empty when all could be read
};

ReadOptions readOptions(const std::vector<std::string>& words);
extern const char* const helpText;

/// A decimal number without sign or padding, at most the largest signed 64-bit one.
std::optional<std::uint64_t> readNumber(std::string_view text);

}  // namespace kt500sim
