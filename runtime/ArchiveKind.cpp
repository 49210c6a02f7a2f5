#include "runtime/ArchiveKind.h"

#include <algorithm>
#include <array>

#include "platform/Ascii.h"

namespace runtime {
namespace {

constexpr std::string_view tarEnding = ".tar";
constexpr std::string_view ipkEnding = ".ipk";
constexpr std::array<std::string_view, 4> gzipEndings = {".gz", ".z", ".tgz", ".taz"};
constexpr std::array<std::string_view, 4> bzip2Endings = {".bz2", ".bz", ".tbz2", ".tbz"};

/// The text from the last "." on, empty without one.
std::string_view ending(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  return dot == path.npos ? std::string_view() : path.substr(dot);
}

bool isAmong(const std::array<std::string_view, 4>& endings, std::string_view text) {
  return std::find(endings.begin(), endings.end(), text) != endings.end();
}

}  // namespace

std::optional<ArchiveKind> archiveKind(std::string_view path) {
  const std::string_view text = ending(path);
  if (text == tarEnding) return ArchiveKind::Tar;
  if (isAmong(gzipEndings, text)) return ArchiveKind::Gzip;
  if (isAmong(bzip2Endings, text)) return ArchiveKind::Bzip2;
  if (text == ipkEnding) return ArchiveKind::Ipk;
  return std::nullopt;
}

std::string kindLetter(ArchiveKind kind) {
  switch (kind) {
    case ArchiveKind::Tar:
      return "";
    case ArchiveKind::Gzip:
      return "z";
    case ArchiveKind::Bzip2:
      return "j";
    case ArchiveKind::Ipk:
      return "ipk";
  }
  return "";
}

bool IsArchiveName(std::string_view name) {
  const std::string text = platform::lowerAscii(ending(name));
  return text == tarEnding || isAmong(gzipEndings, text) || isAmong(bzip2Endings, text);
}

bool opensAsArchive(std::string_view path) { return IsArchiveName(path) || path.ends_with(ipkEnding); }

}  // namespace runtime
