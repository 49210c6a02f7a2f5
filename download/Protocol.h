#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/PermissionMode.h"

namespace download {

/// The text protocol by which a file is pushed to a terminal (docs/protocol.md).

constexpr std::size_t chunkSize = 1000;  ///< bytes; the last chunk holds the rest
constexpr const char* defaultPort = "5142";

/// Whether a path ends in ".tgz", ".tar", ".gz", ".bz2" or ".ipk", exactly so. Such files are sent with
/// `archiveMode`.
bool isArchive(std::string_view path);
constexpr runtime::PermissionMode archiveMode{4, 0, 0};

/// The name that a file gets on the terminal: the text after the last backslash (empty without one), blanks
/// of an archive's name as "_".
std::string getRemoteName(std::string_view path);

struct Request {
  std::string remoteName;  ///< inner form
  std::uint64_t size = 0;  ///< bytes
  runtime::PermissionMode mode;
  std::string owner;  ///< an account of the terminal, "usr1"
};

/// The request as it goes out; the name in the bytes that it has on disk.
std::string requestBytes(const Request& request);

enum class Reply { Undecided, Ok, NoSpace, BadArgs, Unknown };

/// Puts a reply together from the pieces in which it arrives. Only its start counts; decided as soon as it
/// can be told apart, and once.
class ReplyCollector {
 public:
  Reply add(std::string_view piece);
  const std::string& start() const { return start_; }  ///< what decided it, as it came

 private:
  std::string start_;
  Reply reply_ = Reply::Undecided;
};

/// The whole percentage of `part` in `whole`, 0 to 100; 100 of nothing.
int percentOf(std::uint64_t part, std::uint64_t whole);

/// Seconds until all is sent at the rate of the last second; nullopt when nothing was sent in it.
std::optional<std::uint64_t> secondsLeft(std::uint64_t size, std::uint64_t sent, std::uint64_t sentBefore);

using Address = std::array<std::string, 4>;

std::string joined(const Address& address);  ///< "192.168.1.7"

/// The first four parts between dots; a text with fewer fills those that it has.
Address splitAddress(std::string_view text);

struct PastedAddress {
  Address address;
  std::string port;  ///< empty: none
};

/// The first address in a text, whatever stands around it ("http://1.2.3.4:80/x", "1.2.3.4/24"), and the port
/// behind it.
std::optional<PastedAddress> addressIn(std::string_view text);

/// Whether a text is what one box of an address takes: one to three digits.
bool isOctet(std::string_view text);

}  // namespace download
