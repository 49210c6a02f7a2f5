#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/DriveTable.h"

namespace platform {

constexpr std::uint32_t attributeReadOnly = 1;  ///< no write permission for its owner
constexpr std::uint32_t attributeHidden = 2;    ///< name begins with ".", or user.DOSATTRIB says so
constexpr std::uint32_t attributeSystem = 4;    ///< only user.DOSATTRIB says so
constexpr std::uint32_t attributeDirectory = 16;
constexpr std::uint32_t attributeArchive = 32;

struct FoundEntry {
  std::string name;  ///< held form
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;  ///< bytes; follows a link, a dangling link has its own
  std::optional<std::time_t> modifiedTime;
};

/// What an ordinary listing leaves out: hidden and system files.
bool isHiddenOrSystem(const DriveTable& drives, std::string_view path);
bool isHidden(const DriveTable& drives, std::string_view path);

/// The system's directory search: entries of a folder in the order that the system returns them,
/// "." and ".." included. The pattern is a folder path followed by "*".
class DirectorySearch {
 public:
  DirectorySearch(const DriveTable& drives, std::string_view pattern);
  ~DirectorySearch();
  DirectorySearch(const DirectorySearch&) = delete;
  DirectorySearch& operator=(const DirectorySearch&) = delete;

  std::optional<FoundEntry> next();  ///< nullopt at the end, and at once when the folder cannot be read

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace platform
