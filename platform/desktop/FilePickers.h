#pragma once

#include <QStringList>
#include <string>
#include <string_view>

#include "platform/DriveTable.h"

namespace platform::desktop {

struct FileRequest {
  std::string title;
  std::string startFolder;  ///< Windows form; one that is not there: the user's home
  std::string filter;       ///< "text|patterns|text|patterns|", patterns separated by ";"
  int filterIndex = 1;      ///< the preselected entry, counted from 1
  std::string fileName;     ///< stands in the name field at first
  /// Where saveFile writes the entry that was chosen at last, counted from 1; none: not asked for.
  int* chosenFilter = nullptr;
};

/// A filter text as Qt's name filters. Each ends in its patterns in parentheses, which the dialog leaves out
/// of what it shows; "*.*" means every name. A text without "|" is its own pattern.
QStringList nameFilters(std::string_view filter);

/// Asks for files and folders. Every answer is a Windows path, empty when cancelled.
class FilePickers {
 public:
  virtual ~FilePickers() = default;
  virtual std::string openFile(const FileRequest& request) = 0;
  virtual std::string saveFile(const FileRequest& request) = 0;  ///< an existing name is not questioned here
  virtual std::string folder(const std::string& title, const std::string& startFolder) = 0;
  virtual bool canAskForFolder() const { return true; }  ///< false: folder() cannot be shown here
};

/// The desktop's own dialogs over the active window.
class DesktopFilePickers : public FilePickers {
 public:
  explicit DesktopFilePickers(const DriveTable& drives) : drives_(drives) {}
  std::string openFile(const FileRequest& request) override;
  std::string saveFile(const FileRequest& request) override;
  std::string folder(const std::string& title, const std::string& startFolder) override;

 private:
  const DriveTable& drives_;
};

}  // namespace platform::desktop
