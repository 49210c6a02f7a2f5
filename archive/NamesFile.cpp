#include "archive/NamesFile.h"

#include "platform/HeldName.h"
#include "runtime/modAPI.h"

namespace archive {

std::string namesFileText(const std::vector<std::string>& names) {
  std::string bytes;
  for (const std::string& name : names) bytes += platform::releaseName(name) + '\0';
  return bytes;
}

std::string namesFileOptions(const std::string& windowsPath) {
  return "--null --verbatim-files-from -T " + runtime::ToCygwinPath(windowsPath) + ' ';
}

}  // namespace archive
