#pragma once

#include <QMimeData>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace platform::desktop {

/// Puts the files of a file-drop block on the desktop's clipboard, as file managers paste them: text/uri-list
/// and x-special/gnome-copied-files. The block: a header whose first 32-bit field (lowest byte first) is the
/// offset of the file list; there Windows paths, each ended by a NUL, and one more NUL. True when the
/// clipboard then holds the list; false also when a path names nothing here.
bool offerFiles(const DriveTable& drives, std::string_view block);

/// Files for a drag, as text/uri-list. nullptr: there are none, or a path names nothing here.
std::unique_ptr<QMimeData> fileOffer(const DriveTable& drives, const std::vector<std::string>& paths);

/// The files on this machine that a drag or the clipboard offers. The bytes of their names survive.
std::vector<std::string> offeredFiles(const DriveTable& drives, const QMimeData& offer);

/// Puts files on the clipboard as offerFiles does, and their paths as a text, one a line.
bool copyFiles(const DriveTable& drives, const std::vector<std::string>& paths);
bool copyText(const QString& text);  ///< false: there is no clipboard

}  // namespace platform::desktop
