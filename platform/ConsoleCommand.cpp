#include "platform/ConsoleCommand.h"

#include <algorithm>

#include "platform/Process.h"

namespace platform {
namespace {

constexpr std::string_view closes = "/c ";
constexpr std::string_view stays = "/k ";
constexpr std::string_view pauseWord = "pause";
constexpr char quote = '"';
/// What means something to a command processor outside quotes.
constexpr std::string_view special = "&|<>()^%!";

ConsoleCommand refused(const std::string& why) {
  ConsoleCommand command;
  command.refusal = "This command is not understood: " + why + ".";
  return command;
}

bool isControl(char c) { return (c >= 0 && c < 0x20) || c == 0x7F; }

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Where one of the characters stands outside quotes; npos: nowhere.
std::size_t findUnquoted(std::string_view text, std::string_view characters) {
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == quote) quoted = !quoted;
    if (!quoted && characters.find(text[i]) != characters.npos) return i;
  }
  return text.npos;
}

/// Takes the first quote, which stands in front, and the last one away; empty where none stands there.
std::string withoutOuterQuotes(std::string_view text) {
  if (!text.starts_with(quote)) return {};
  std::string line(text.substr(1));
  if (const std::size_t last = line.rfind(quote); last != line.npos) line.erase(last, 1);
  return line;
}

ConsoleCommand readProgram(std::string_view text) {
  const std::size_t end = text.find(quote, 1);
  if (!text.starts_with(quote) || end <= 1) return refused("it does not begin with a program in quotes");
  const std::string_view rest = text.substr(end + 1);
  if (!rest.empty() && rest.front() != ' ') return refused("something follows the program without a blank");
  ConsoleCommand command;
  command.program = text.substr(1, end - 1);
  command.arguments = splitCommandLine(rest);
  return command;
}

}  // namespace

ConsoleCommand readConsoleCommand(std::string_view text) {
  if (std::any_of(text.begin(), text.end(), isControl)) return refused("it holds a control character");
  const bool staysOpen = text.starts_with(stays);
  if (!staysOpen && !text.starts_with(closes)) return refused("it begins with neither /c nor /k");
  const std::string line = withoutOuterQuotes(trimmed(text.substr(closes.size())));
  const std::string_view whole = line;
  const std::size_t separator = findUnquoted(whole, special);
  const bool pauses =
      separator != whole.npos && whole[separator] == '&' && trimmed(whole.substr(separator + 1)) == pauseWord;
  if (!pauses) return refused("it is not one program in quotes and then \"pause\"");
  ConsoleCommand command = readProgram(trimmed(whole.substr(0, separator)));
  command.staysOpen = staysOpen;
  return command;
}

std::string ConsoleCommand::name() const { return program.substr(program.find_last_of("\\/") + 1); }

std::string ConsoleCommand::title() const {
  return arguments.empty() ? name() : name() + ' ' + arguments.back();
}

std::string endLine(const std::string& name, const ProgramEnd& end) {
  if (end.signal != 0) return name + " was ended by signal " + std::to_string(end.signal) + ".";
  if (end.status != 0) return name + " ended with status " + std::to_string(end.status) + ".";
  return name + " ended well.";
}

}  // namespace platform
