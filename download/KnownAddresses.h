#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "download/Protocol.h"

namespace download {

/// A terminal that files were sent to.
struct KnownAddress {
  Address address;
  std::string port;
  std::string name;  ///< the user's; empty: none

  bool samePlace(const KnownAddress& other) const;
  std::string text() const;  ///< "Lab 3  192.168.1.7", the port behind it unless it is the usual one
};

/// The last eight of them, the newest first.
class KnownAddresses {
 public:
  /// Of a line each, "192.168.1.7:5142 Lab 3"; what is none is left out.
  explicit KnownAddresses(std::string_view stored);
  std::string stored() const;
  const std::vector<KnownAddress>& all() const { return all_; }

  void use(const KnownAddress& used);  ///< it keeps the name that it has; what is no IP address is not kept
  void rename(const KnownAddress& named);
  void forget(const KnownAddress& forgotten);

 private:
  std::vector<KnownAddress>::iterator find(const KnownAddress& wanted);
  std::vector<KnownAddress> all_;
};

}  // namespace download
