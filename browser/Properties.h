#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "runtime/Selection.h"
#include "runtime/Services.h"

namespace browser {

/// What the Properties window shows besides the size. An empty text has no row.
struct PropertiesRecord {
  std::string propTitle;
  std::string propInfo;  ///< "2 files, 1 folders"
  std::string propLocation;
  std::optional<std::time_t> propModified;
  std::string propPermissions;  ///< the mode string of `ls`
};

/// What there is to say of a selection or, where it is empty, of the current folder (trailing backslash) with
/// these rows. Holds the gate and lets events run; nullopt when it was stopped.
std::optional<PropertiesRecord> propertiesOf(const runtime::Services& services,
                                             const runtime::Selection& selection, const std::string& folder,
                                             const std::vector<std::string>& rows);

/// The paths whose sizes make up the total, in order.
std::vector<std::string> itemsOf(const runtime::Selection& selection, const std::string& folder,
                                 const std::vector<std::string>& rows);

}  // namespace browser
