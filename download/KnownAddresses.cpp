#include "download/KnownAddresses.h"

#include <algorithm>

#include "platform/InternetAddress.h"

namespace download {
namespace {

constexpr std::size_t mostKept = 8;

bool namesAPlace(const KnownAddress& entry) {
  return platform::ipv4Of(joined(entry.address)) && platform::portOf(entry.port);
}

KnownAddress readLine(std::string_view line) {
  const std::size_t blank = std::min(line.find(' '), line.size());
  const std::string_view place = line.substr(0, blank);
  const std::size_t colon = std::min(place.find(':'), place.size());
  KnownAddress entry{splitAddress(place.substr(0, colon)), std::string(place.substr(colon)), ""};
  if (!entry.port.empty()) entry.port.erase(0, 1);
  if (blank < line.size()) entry.name = line.substr(blank + 1);
  return entry;
}

}  // namespace

bool KnownAddress::samePlace(const KnownAddress& other) const {
  return platform::ipv4Of(joined(address)) == platform::ipv4Of(joined(other.address)) &&
         platform::portOf(port) == platform::portOf(other.port);
}

std::string KnownAddress::text() const {
  return (name.empty() ? "" : name + "  ") + joined(address) + (port == defaultPort ? "" : ":" + port);
}

KnownAddresses::KnownAddresses(std::string_view stored) {
  while (!stored.empty() && all_.size() < mostKept) {
    const std::size_t end = std::min(stored.find('\n'), stored.size());
    KnownAddress entry = readLine(stored.substr(0, end));
    if (namesAPlace(entry) && find(entry) == all_.end()) all_.push_back(std::move(entry));
    stored.remove_prefix(std::min(end + 1, stored.size()));
  }
}

std::string KnownAddresses::stored() const {
  std::string lines;
  for (const KnownAddress& entry : all_) {
    lines += joined(entry.address) + ":" + entry.port;
    lines += (entry.name.empty() ? "" : " " + entry.name) + "\n";
  }
  return lines;
}

void KnownAddresses::use(const KnownAddress& used) {
  if (!namesAPlace(used)) return;
  const auto known = find(used);
  if (known != all_.end()) {
    std::rotate(all_.begin(), known, known + 1);
    return;
  }
  all_.insert(all_.begin(), used);
  all_.resize(std::min(all_.size(), mostKept));
}

void KnownAddresses::rename(const KnownAddress& named) {
  const auto known = find(named);
  if (known != all_.end()) known->name = named.name;
}

void KnownAddresses::forget(const KnownAddress& forgotten) {
  std::erase_if(all_, [&forgotten](const KnownAddress& entry) { return entry.samePlace(forgotten); });
}

std::vector<KnownAddress>::iterator KnownAddresses::find(const KnownAddress& wanted) {
  return std::find_if(all_.begin(), all_.end(),
                      [&wanted](const KnownAddress& entry) { return entry.samePlace(wanted); });
}

}  // namespace download
