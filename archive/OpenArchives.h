#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "archive/InnerArchive.h"

namespace archive {

/// An archive's file as it was when it was listed.
struct ListedFile {
  std::string path;
  std::optional<std::uint64_t> size;
  std::optional<std::time_t> time;
  bool operator==(const ListedFile&) const = default;
};
ListedFile listedFile(const platform::Files& files, const std::string& path);

/// The way from an archive to one that is open inside it, at whatever depth.
class OpenArchives {
 public:
  /// An archive of which a member is shown in its place, and all that brings it back.
  struct Outer {
    ListedFile file;
    ArchiveTree tree;  ///< with its check marks
    NodeId member;
    std::string proposal;  ///< the output folder proposed for it
  };

  bool empty() const { return levels_.empty(); }
  void enter(Outer outer, UnpackedMember inner);

  // Not while empty():
  Outer leave();  ///< one level; what was unpacked for it goes
  const Outer& outermost() const { return levels_.front().outer; }
  const std::string& path() const { return levels_.back().inner.path; }  ///< of the innermost, on disk
  std::string name() const;      ///< what it is called: "x.tar in data.tar.gz in C:\pkg\app.ipk"
  std::string proposal() const;  ///< its output folder: one in that proposed for the archive around it

 private:
  struct Level {
    Outer outer;
    UnpackedMember inner;
  };
  std::vector<Level> levels_;
};

}  // namespace archive
