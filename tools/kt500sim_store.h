#pragma once

#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"

namespace kt500sim {

/// The terminal's flash: one folder of the host. Links in it are never followed.
class Store {
 public:
  explicit Store(const std::string& folder);  ///< made when missing
  explicit operator bool() const { return static_cast<bool>(root_); }
  const std::string& folder() const { return folder_; }  ///< absolute
  std::uint64_t bytesLeft() const;                       ///< of the host's file system

  /// The home of an account below home/, made when missing; empty when something else is in its place.
  std::string homeOf(const std::string& account) const;
  std::string newFolder() const;  ///< a host path for the time being; empty: none could be made
  /// While one holds this, what is in the homes is nobody else's to change.
  std::unique_lock<std::mutex> lockHomes() const { return std::unique_lock(homes_); }

 private:
  friend class IncomingFile;
  std::string folder_;
  platform::Descriptor root_;
  mutable std::mutex homes_;
};

/// A file on its way in, under a name of its own; gone again unless it is kept.
class IncomingFile {
 public:
  explicit IncomingFile(const Store& store);
  IncomingFile(const IncomingFile&) = delete;
  IncomingFile& operator=(const IncomingFile&) = delete;
  ~IncomingFile();
  explicit operator bool() const { return static_cast<bool>(file_); }

  bool write(std::string_view bytes);
  platform::Descriptor reader() const;  ///< of these bytes, whoever gets the name later; before it is kept
  bool keepAs(const std::string& name, mode_t mode);  ///< replaces a file or link of that name

 private:
  const Store& store_;
  std::string name_;
  platform::Descriptor file_;
};

}  // namespace kt500sim
