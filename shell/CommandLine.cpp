#include "shell/CommandLine.h"

#include <algorithm>
#include <array>

namespace shell {
namespace {

constexpr std::string_view fieldEnd = "\r\n";
constexpr std::string_view betweenPaths = "\" \"";

struct Switch {
  std::string_view text;
  Form form;
  std::size_t leastFields;
};

/// In the order in which they are tried: the first that the text begins with wins.
constexpr std::array<Switch, 6> switches = {{{"-d", Form::Folder, 0},
                                             {"-open", Form::Open, 3},
                                             {"-extract", Form::Extract, 4},
                                             {"-pack", Form::Pack, 3},
                                             {"-qpack", Form::QuickPack, 3},
                                             {"-perms", Form::Permissions, 3}}};

const Switch* findSwitch(std::string_view text) {
  for (const Switch& each : switches) {
    if (text.starts_with(each.text)) return &each;
  }
  return nullptr;
}

/// At least one piece.
std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> pieces;
  while (true) {
    const std::size_t end = text.find(separator);
    pieces.emplace_back(text.substr(0, end));
    if (end == text.npos) return pieces;
    text.remove_prefix(end + separator.size());
  }
}

/// Between the first two double quotes; without any, the second of the words that single spaces part.
std::optional<std::string> folderOf(std::string_view text) {
  for (const std::string_view separator : {"\"", " "}) {
    const std::vector<std::string> pieces = split(text, separator);
    if (pieces.size() >= 2) return pieces[1];
  }
  return std::nullopt;
}

std::vector<std::string> pathsOf(std::string_view text) {
  std::vector<std::string> paths = split(text, betweenPaths);
  for (std::string& path : paths) std::erase(path, '"');
  return paths;
}

bool standsInQuotes(std::string_view argument) {
  return argument.size() >= 2 && argument.starts_with('"') && argument.ends_with('"');
}

/// Makes the command-line text from what stands behind our own options.
class TextMaker {
 public:
  TextMaker(const TranslatePath& translate, const HoldName& hold) : translate_(translate), hold_(hold) {}

  std::string make(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return "";
    const Switch* const found = findSwitch(arguments.front());
    if (found == nullptr) return paths(arguments);
    return found->form == Form::Folder ? folder(arguments) : record(arguments, found->form);
  }
  std::string toWindows(std::string_view typed);
  const std::string& problem() const { return problem_; }

 private:
  std::string paths(const std::vector<std::string>& arguments);
  std::string folder(const std::vector<std::string>& arguments);
  std::string record(const std::vector<std::string>& arguments, Form form);
  std::string quoted(const std::string& argument) {
    return standsInQuotes(argument) ? argument : '"' + toWindows(argument) + '"';
  }

  const TranslatePath& translate_;
  const HoldName& hold_;
  std::string problem_;
};

/// An empty text names nothing, not the caller's folder. One with a problem stands as typed, but does not cut
/// a record.
std::string TextMaker::toWindows(std::string_view typed) {
  if (typed.empty()) return "";
  const platform::TypedPath path = translate_(typed);
  if (path) return path.path;
  if (problem_.empty()) problem_ = path.problem;
  std::string text(typed);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text;
}

/// Shells complete the name of a folder with a slash.
std::string_view withoutTrailingSlash(std::string_view name) {
  while (name.size() > 1 && name.ends_with('/')) name.remove_suffix(1);
  return name;
}

/// A single argument may be a whole list already, in which case it stands in quotes.
std::string TextMaker::paths(const std::vector<std::string>& arguments) {
  if (arguments.size() == 1)
    return standsInQuotes(arguments.front()) ? arguments.front() : toWindows(arguments.front());
  std::string text;
  for (const std::string& argument : arguments) text.append(text.empty() ? "" : " ").append(quoted(argument));
  return text;
}

/// The folder stands in the same argument as the switch, or is the next one. What follows is never read.
std::string TextMaker::folder(const std::vector<std::string>& arguments) {
  const std::string& first = arguments.front();
  if (const auto inside = folderOf(first)) return "-d \"" + toWindows(*inside) + '"';
  return arguments.size() == 1 ? first : first + ' ' + quoted(arguments[1]);
}

std::string TextMaker::record(const std::vector<std::string>& arguments, Form form) {
  std::vector<std::string> fields = split(arguments.front(), fieldEnd);
  fields.insert(fields.end(), arguments.begin() + 1, arguments.end());
  std::string text = fields.front();
  for (std::size_t i = 1; i < fields.size(); ++i) {
    const bool isFolder = i == 1 || (i == 3 && form == Form::Extract);
    text.append(fieldEnd).append(isFolder ? toWindows(fields[i]) : hold_(withoutTrailingSlash(fields[i])));
  }
  return text;
}

using Argument = std::vector<std::string>::const_iterator;

/// "--owner 500" and "--owner=500" are one. False for what is no option with a value; one without any gets
/// the empty text.
bool takeValue(Argument& argument, Argument end, PackOptions& out) {
  const std::size_t equals = argument->find('=');
  const std::string name = argument->substr(0, equals);
  std::optional<std::string>* const option = name == "--output"  ? &out.output
                                             : name == "--owner" ? &out.owner
                                             : name == "--group" ? &out.group
                                             : name == "--time"  ? &out.time
                                             : name == "--umask" ? &out.umask
                                                                 : nullptr;
  if (option == nullptr) return false;
  if (equals != name.npos)
    *option = argument->substr(equals + 1);
  else
    *option = argument + 1 == end ? std::string() : *++argument;
  return true;
}

/// False for what is no option of ours.
bool takeFlag(std::string_view argument, HostArguments& out) {
  bool* const option = argument == "--help"      ? &out.help
                       : argument == "--version" ? &out.version
                       : argument == "--batch"   ? &out.batch
                       : argument == "--yes"     ? &out.yes
                                                 : nullptr;
  if (option != nullptr) *option = true;
  return option != nullptr;
}

}  // namespace

CommandLine parseCommandLine(std::string_view text) {
  CommandLine line;
  if (text.empty()) return line;
  const Switch* const found = findSwitch(text);
  line.form = found == nullptr ? Form::Paths : found->form;
  if (line.form == Form::Folder) {
    line.folder = folderOf(text);
  } else if (line.form == Form::Paths) {
    line.fields = pathsOf(text);
  } else {
    line.fields = split(text, fieldEnd);
    line.complete = line.fields.size() >= found->leastFields;
  }
  return line;
}

HostArguments readArguments(const std::vector<std::string>& arguments, const TranslatePath& translate,
                            const HoldName& hold) {
  HostArguments out;
  auto first = arguments.begin();
  while (first != arguments.end() && (takeFlag(*first, out) || takeValue(first, arguments.end(), out.pack)))
    ++first;
  if (first != arguments.end() && first->starts_with("--")) {
    out.unknown = *first;
    return out;
  }
  TextMaker maker(translate, hold);
  if (out.pack.output) out.pack.output = maker.toWindows(*out.pack.output);
  out.text = maker.make({first, arguments.end()});
  out.problem = maker.problem();
  return out;
}

}  // namespace shell
