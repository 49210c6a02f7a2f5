#include "browser/ModePass.h"

#include <algorithm>
#include <charconv>

#include "platform/HeldName.h"
#include "runtime/EscapeQuoting.h"
#include "runtime/Lines.h"
#include "runtime/LsLine.h"

namespace browser {
namespace {

constexpr std::string_view speaker = "ls: ";

std::string passed(const std::string& name) { return name.starts_with('-') ? "./" + name : name; }

/// Whether the character at `at` stands behind a backslash that escapes it.
bool isEscaped(std::string_view text, std::size_t at) {
  const std::size_t before = text.substr(0, at).find_last_not_of('\\');
  const std::size_t backslashes = before == text.npos ? at : at - before - 1;
  return backslashes % 2 == 1;
}

std::string_view withoutTarget(std::string_view line) {
  constexpr std::string_view arrow = " -> ";
  std::size_t at = line.find(arrow);
  while (at != line.npos && isEscaped(line, at)) at = line.find(arrow, at + 1);
  return line.substr(0, at);
}

std::string_view targetOf(std::string_view line) {
  constexpr std::size_t arrow = 4;  // " -> "
  const std::size_t at = withoutTarget(line).size();
  return at == line.size() ? std::string_view() : line.substr(at + arrow);
}

/// The next field of a line, which is cut off it.
std::string_view takeField(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const std::string_view field = line.substr(0, line.find(' '));
  line.remove_prefix(field.size());
  return field;
}

bool readNumber(std::string_view field, std::uint32_t& number) {
  const char* const end = field.data() + field.size();
  return std::from_chars(field.data(), end, number).ptr == end && !field.empty();
}

LsEntry entryOf(std::string_view line) {
  LsEntry entry;
  entry.mode = runtime::lsModeColumn(line);
  if (runtime::lsType(line) == 'l') entry.target = platform::holdName(runtime::unescaped(targetOf(line)));
  takeField(line);  // the mode
  takeField(line);  // the count of names
  entry.owned = readNumber(takeField(line), entry.owner) && readNumber(takeField(line), entry.group);
  return entry;
}

/// The bytes of the name at the end of a line: behind its last blank that is no part of the name.
std::string nameOf(std::string_view line) {
  if (runtime::lsType(line) == 'l') line = withoutTarget(line);
  std::size_t blank = line.rfind(' ');
  while (blank != line.npos && blank > 0 && isEscaped(line, blank)) blank = line.rfind(' ', blank - 1);
  return runtime::unescaped(line.substr(blank + 1));  // npos + 1 is the beginning
}

/// Complaints quote a name in one of two ways, unless it is an odd one.
std::string complaintOf(const std::vector<std::string_view>& complaints, const std::string& name) {
  for (const std::string_view line : complaints)
    for (const char* quote : {"'", "\""})
      if (line.find(quote + name + quote) != line.npos) return runtime::lsModeColumn(line);
  return {};
}

}  // namespace

std::string listedName(const std::string& name) { return '"' + passed(name) + "\" "; }

std::string modeCommand(std::span<const std::string> names) {
  std::string command = "ls.exe -lnd --sort=none --group-directories-first ";
  for (const std::string& name : names) command += listedName(name);
  return command;
}

BatchModes modesOf(std::string_view output, std::span<const std::string> names) {
  std::vector<std::string> wanted;
  for (const std::string& name : names) wanted.push_back(platform::releaseName(passed(name)));
  BatchModes batch;
  batch.entries.resize(names.size());
  std::vector<std::string_view> complaints;
  auto next = wanted.begin();
  for (const std::string_view line : runtime::completeLines(output)) {
    if (line.starts_with(speaker)) {
      complaints.push_back(line);
      continue;
    }
    const auto found = std::find(next, wanted.end(), nameOf(line));
    if (found == wanted.end()) continue;
    batch.entries[static_cast<std::size_t>(found - wanted.begin())] = entryOf(line);
    next = found + 1;
  }
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (!batch.entries[i].mode.empty()) continue;
    ++batch.withoutLine;
    batch.entries[i].mode = complaintOf(complaints, wanted[i]);
  }
  batch.complaints = complaints.size();
  return batch;
}

std::string_view lineOf(std::string_view output, const std::string& name) {
  const std::string wanted = platform::releaseName(passed(name));
  std::string_view last;
  for (const std::string_view line : runtime::completeLines(output))
    if (!line.starts_with(speaker) && nameOf(line) == wanted) last = line;
  return last;
}

}  // namespace browser
