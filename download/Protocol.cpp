#include "download/Protocol.h"

#include <algorithm>

#include "platform/HeldName.h"

namespace download {
namespace {

constexpr std::string_view command = "DLD:";
constexpr std::string_view group = "users";
constexpr std::string_view archiveEndings[] = {".tgz", ".tar", ".gz", ".bz2", ".ipk"};

struct KnownReply {
  std::string_view text;
  Reply reply;
};
constexpr KnownReply knownReplies[] = {
    {"OK", Reply::Ok}, {"NOSPACE", Reply::NoSpace}, {"BADARGS", Reply::BadArgs}};
constexpr std::size_t longestReply = 7;

Reply classify(std::string_view start) {
  for (const KnownReply& known : knownReplies) {
    if (start.starts_with(known.text)) return known.reply;
    if (known.text.starts_with(start)) return Reply::Undecided;
  }
  return Reply::Unknown;
}

bool isOctet(std::string_view text) {
  return !text.empty() && text.size() <= 3 &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  return first == text.npos ? std::string_view()
                            : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

bool isArchive(std::string_view path) {
  return std::any_of(std::begin(archiveEndings), std::end(archiveEndings),
                     [path](std::string_view ending) { return path.ends_with(ending); });
}

std::string getRemoteName(std::string_view path) {
  const std::size_t backslash = path.rfind('\\');
  if (backslash == path.npos) return "";
  std::string name(path.substr(backslash + 1));
  if (isArchive(name)) std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

std::string requestBytes(const Request& request) {
  std::string bytes(command);
  const auto endField = [&bytes](std::string_view text) { bytes.append(text).push_back('\0'); };
  endField(platform::releaseName(request.remoteName));
  endField(std::to_string(request.size));
  endField(request.mode.text());
  endField(request.owner);
  endField(group);
  return bytes;
}

Reply ReplyCollector::add(std::string_view piece) {
  if (reply_ != Reply::Undecided) return reply_;
  start_.append(piece.substr(0, longestReply));
  return reply_ = classify(start_);
}

int percentOf(std::uint64_t part, std::uint64_t whole) {
  if (part >= whole) return 100;
  return static_cast<int>(100.0 * static_cast<double>(part) / static_cast<double>(whole));
}

std::optional<std::uint64_t> secondsLeft(std::uint64_t size, std::uint64_t sent, std::uint64_t sentBefore) {
  if (sent <= sentBefore || size < sent) return std::nullopt;
  return (size - sent) / (sent - sentBefore);
}

std::string joined(const Address& address) {
  return address[0] + '.' + address[1] + '.' + address[2] + '.' + address[3];
}

Address splitAddress(std::string_view text) {
  Address address;
  for (std::string& part : address) {
    const std::size_t dot = text.find('.');
    part = text.substr(0, dot);
    if (dot == text.npos) break;
    text.remove_prefix(dot + 1);
  }
  return address;
}

std::optional<Address> wholeAddress(std::string_view text) {
  const std::string_view bare = trimmed(text);
  Address address = splitAddress(bare);
  if (!std::all_of(address.begin(), address.end(), isOctet) || joined(address) != bare) return std::nullopt;
  return address;
}

}  // namespace download
