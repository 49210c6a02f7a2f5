#include "archive/PackProblem.h"

#include <cerrno>
#include <system_error>

namespace archive {

std::string nothingToPack(const std::string& folder) {
  return "There is nothing to pack in '" + folder + "'";
}

std::string cannotWrite(const std::string& folder, int systemError) {
  if (systemError == ENOSPC) return diskFull(folder);
  return "Unable to write into '" + folder + "':\r" + std::generic_category().message(systemError);
}

std::string cannotWrite(const platform::Files& files, const std::string& folder) {
  const int problem = files.writeProblem(folder);
  return cannotWrite(folder, problem == 0 ? EIO : problem);
}

std::string cannotCopy(const std::string& path) {
  return "Unable to read '" + path + "' in order to append to it";
}

std::string noTemporaryFolder(const platform::Files& files, int systemError) {
  const std::string folder = platform::temporaryFolder(files.drives());
  const int problem = files.writeProblem(folder);
  return "The temporary folder cannot be used.\r" + cannotWrite(folder, problem == 0 ? systemError : problem);
}

std::string diskFull(const std::string& folder) {
  return "The disk is full: no space is left in '" + folder + "'";
}

std::string appearedMeanwhile(const std::string& path) {
  return "'" + path + "' has appeared meanwhile, and nobody was asked about it.\rIt was not replaced";
}

bool tellsOfFullDisk(std::string_view output) {
  return output.find(": No space left on device\n") != output.npos;
}

}  // namespace archive
