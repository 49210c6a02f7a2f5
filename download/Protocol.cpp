#include "download/Protocol.h"

#include <algorithm>

#include "platform/HeldName.h"
#include "platform/InternetAddress.h"

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

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

/// What a text begins with; `one` tells what belongs to it.
template <typename IsOne>
std::string_view leading(std::string_view text, IsOne one) {
  const auto end = std::find_if_not(text.begin(), text.end(), one);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

std::string portBehind(std::string_view text) {
  if (!text.starts_with(':')) return "";
  const std::string_view digits = leading(text.substr(1), isDigit);
  return platform::portOf(digits) ? std::string(digits) : "";
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

std::optional<PastedAddress> addressIn(std::string_view text) {
  const auto isPart = [](char c) { return isDigit(c) || c == '.'; };
  for (std::size_t at = text.find_first_of("0123456789"); at < text.size();
       at = text.find_first_of("0123456789", at)) {
    std::string_view address = leading(text.substr(at), isPart);
    const std::string_view behind = text.substr(at + address.size());
    const bool inWord = (at > 0 && (isLetter(text[at - 1]) || text[at - 1] == '.')) ||
                        (!behind.empty() && isLetter(behind.front()));
    at += address.size();
    if (address.ends_with('.')) address.remove_suffix(1);  // of a sentence
    if (!inWord && platform::ipv4Of(address)) return PastedAddress{splitAddress(address), portBehind(behind)};
  }
  return std::nullopt;
}

bool isOctet(std::string_view text) {
  return !text.empty() && text.size() <= 3 && std::all_of(text.begin(), text.end(), isDigit);
}

}  // namespace download
