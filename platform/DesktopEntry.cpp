#include "platform/DesktopEntry.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

#include "platform/TypedPath.h"

namespace platform {
namespace {

std::string variable(const char* name, const std::string& otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

std::vector<std::string> dataFolders() {
  std::vector<std::string> folders = {variable("XDG_DATA_HOME", homeFolder() + "/.local/share")};
  const std::string system = variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
  std::size_t from = 0;
  for (std::size_t colon = 0; colon != system.npos; from = colon + 1) {
    colon = system.find(':', from);
    folders.push_back(system.substr(from, colon == system.npos ? colon : colon - from));
  }
  return folders;
}

std::optional<std::string> textOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// Of the program's own group, still escaped; entries have more of them ("[Desktop Action new]").
std::string_view valueOf(std::string_view entry, std::string_view key) {
  bool inside = false;
  while (!entry.empty()) {
    const std::string_view line = trimmed(entry.substr(0, entry.find('\n')));
    const std::size_t equals = line.find('=');
    if (line.starts_with('['))
      inside = line == "[Desktop Entry]";
    else if (inside && equals != line.npos && trimmed(line.substr(0, equals)) == key)
      return trimmed(line.substr(equals + 1));
    entry.remove_prefix(std::min(entry.size(), entry.find('\n')));
    entry.remove_prefix(entry.empty() ? 0 : 1);
  }
  return {};
}

/// The escapes of every text in an entry; those of quoted words are another layer.
std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool escape = value[i] == '\\' && i + 1 < value.size();
    const char c = escape ? value[++i] : value[i];
    text += !escape ? c : c == 's' ? ' ' : c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
  }
  return text;
}

std::vector<std::string> wordsOf(std::string_view command) {
  std::vector<std::string> words;
  std::optional<std::string> word;
  bool quoted = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    if (c == ' ' && !quoted) {
      if (word) words.push_back(*std::exchange(word, std::nullopt));
      continue;
    }
    if (!word) word.emplace();
    if (c == '"')
      quoted = !quoted;
    else
      *word += quoted && c == '\\' && i + 1 < command.size() ? command[++i] : c;
  }
  if (word) words.push_back(*word);
  return words;
}

struct Expanded {
  std::string text;
  bool named = false;  // the file stands in it
};

/// "%f", "%F", "%u" and "%U" stand for the file, "%%" for itself; what else there is (icon, caption) no
/// program needs.
Expanded expanded(std::string_view word, const std::string& file) {
  Expanded result;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] != '%' || i + 1 == word.size()) {
      result.text += word[i];
      continue;
    }
    const char code = word[++i];
    const bool named = std::string_view("fFuU").find(code) != std::string_view::npos;
    result.named |= named;
    if (named) result.text += file;
    if (code == '%') result.text += code;
  }
  return result;
}

}  // namespace

/// A "-" in the name may stand for a folder.
std::string desktopEntry(std::string_view name) {
  for (const std::string& folder : dataFolders()) {
    std::string file(name);
    while (true) {
      if (auto text = textOf(folder + "/applications/" + file)) return *text;
      const std::size_t dash = file.find('-');
      if (dash == file.npos) break;
      file[dash] = '/';
    }
  }
  return {};
}

std::vector<std::string> commandFor(std::string_view entry, const std::string& hostPath) {
  if (valueOf(entry, "Terminal") == "true") return {};
  std::vector<std::string> command;
  bool named = false;
  for (const std::string& word : wordsOf(unescaped(valueOf(entry, "Exec")))) {
    const Expanded argument = expanded(word, hostPath);
    named |= argument.named;
    if (!argument.text.empty() || word.find('%') == word.npos) command.push_back(argument.text);
  }
  if (!command.empty() && !named) command.push_back(hostPath);
  return command;
}

}  // namespace platform
