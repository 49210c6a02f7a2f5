#include "archive/ExtractCommand.h"

#include <algorithm>

#include "runtime/modAPI.h"

namespace archive {

using runtime::ArchiveKind;
using runtime::kindLetter;
using runtime::ToCygwinPath;

platform::RunManner listingManner() {
  platform::RunManner manner = runtime::mayChange({});
  manner.tarOptions = "--numeric-owner --blocking-factor=512";  // a quarter of a MB at a time, not 10 KB
  return manner;
}

std::string listCommand(ArchiveKind kind, std::string_view archivePath) {
  if (kind == ArchiveKind::Ipk) return "ar -t " + ToCygwinPath(archivePath);
  return "tar.exe -i -Pt" + kindLetter(kind) + "vf " + ToCygwinPath(archivePath);
}

std::string namesCommand(ArchiveKind kind, std::string_view archivePath) {
  if (kind == ArchiveKind::Ipk) return "ar -t " + ToCygwinPath(archivePath);
  return "tar.exe -i -t" + kindLetter(kind) + "f " + ToCygwinPath(archivePath);
}

std::string packageSizeCommand(std::string_view archivePath) {
  return "ar -p " + ToCygwinPath(archivePath) + " packageSize";
}

std::string tarExtractCommand(ArchiveKind kind, std::string_view archivePath, std::string_view outFolder,
                              std::string_view listText) {
  return "tar.exe -i -C " + ToCygwinPath(outFolder) + " -" + kindLetter(kind) +
         "xv --preserve-permissions -f " + ToCygwinPath(archivePath) + ' ' + std::string(listText);
}

std::string arExtractCommand(std::string_view archivePath, const std::vector<std::string>& members) {
  const bool likeOption = std::any_of(members.begin(), members.end(),
                                      [](const std::string& member) { return member.starts_with('-'); });
  return "ar.exe -x " + ToCygwinPath(archivePath) + ' ' + (likeOption ? "-- " : "") + memberList(members);
}

std::string tarMemberCommand(ArchiveKind kind, std::string_view archivePath, std::string_view outFolder,
                             std::string_view listText) {
  return "tar.exe -i -C " + ToCygwinPath(outFolder) + " -" + kindLetter(kind) +
         "x --no-same-owner --no-same-permissions --no-recursion -f " + ToCygwinPath(archivePath) + ' ' +
         std::string(listText);
}

std::string contentCommand(ArchiveKind kind, std::string_view archivePath, std::string_view member) {
  return "tar.exe -i -" + kindLetter(kind) + "xO --occurrence=1 --no-recursion -f " +
         ToCygwinPath(archivePath) + " \"" + std::string(member) + '"';
}

bool readsAsPath(std::string_view member) { return member.starts_with("/cygdrive/"); }

std::string memberList(const std::vector<std::string>& members) {
  std::string text;
  for (const std::string& member : members) text += '"' + member + "\" ";
  return text;
}

std::string proposedOutFolder(std::string_view archivePath) {
  return std::string(archivePath.substr(0, archivePath.rfind('.'))) + '\\';
}

}  // namespace archive
