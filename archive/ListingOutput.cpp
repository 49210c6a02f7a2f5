#include "archive/ListingOutput.h"

#include "archive/ArMembers.h"
#include "archive/ListingLine.h"

namespace archive {
namespace {

/// A box that holds more is taller than any screen.
constexpr std::size_t longestReason = 4000;

constexpr const char* packageError = "An error occurred when attempting to open package:\r\n";
constexpr const char* tarError = "An error occurred when attempting to open tar package:\r\n";

/// Where the first line begins that `speaker` says and that stands for an error.
std::size_t findError(std::string_view output, std::string_view speaker) {
  for (std::size_t at = 0; at < output.size(); at = output.find('\n', at), at += at != output.npos ? 1 : 0) {
    const std::string_view line = output.substr(at);
    if (line.starts_with(speaker) && !isHarmlessRemark(line)) return at;
  }
  return std::string_view::npos;
}

std::string gzipReason(std::string_view output, std::size_t remark) {
  if (output.find("unexpected end of file", remark) != output.npos) return "Unexpected end of file";
  return std::string(output.size() <= longestReason ? output : output.substr(remark));
}

/// From two characters behind the last ":" on.
std::string_view arReason(std::string_view output) {
  const std::size_t colon = output.rfind(':');
  return colon + 2 < output.size() ? output.substr(colon + 2) : std::string_view();
}

std::string message(const char* first, std::string_view path, std::string_view reason) {
  return first + std::string(path) + "\r\n\r\n" + std::string(reason);
}

/// What the tools themselves say is wrong.
std::optional<std::string> saidProblem(std::string_view output, std::string_view path) {
  if (output.starts_with("ar: ")) return message(packageError, path, arReason(output));
  const std::size_t gzip = findError(output, "gzip: ");
  if (gzip != output.npos) return message(tarError, path, gzipReason(output, gzip));
  const std::size_t tar = findError(output, "tar: ");
  if (tar != output.npos) return message(tarError, path, output.substr(tar));
  return std::nullopt;
}

}  // namespace

std::optional<std::string> listingProblem(const runtime::ToolResult& run, runtime::ArchiveKind kind,
                                          const std::string& path, const platform::Files& files) {
  if (auto said = saidProblem(run.text, path)) return said;
  const bool ipk = kind == runtime::ArchiveKind::Ipk;
  const std::string cut = ipk && run.good() ? arProblem(files, path) : "";
  if (!cut.empty()) return message(packageError, path, cut);
  if (!run.good()) return message(ipk ? packageError : tarError, path, howItEnded(run, ipk ? "ar" : "tar"));
  if (run.text.empty()) return message(packageError, path, "No files to extract");
  return std::nullopt;
}

void tellListingProblem(runtime::UserInterface& user, const std::string& problem) {
  user.message(problem, runtime::Buttons::Ok, runtime::Icon::Information, "Error Opening Package");
}

}  // namespace archive
