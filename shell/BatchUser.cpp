#include "shell/BatchUser.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "platform/HeldName.h"
#include "platform/Signals.h"

namespace shell {
namespace {

using runtime::Answer;
using runtime::Buttons;
using runtime::Consequence;

/// One line: what a box would show on several is joined by blanks.
std::string oneLine(const std::string& text) {
  std::string line;
  for (const char c : text) {
    const bool end = c == '\r' || c == '\n';
    if (!end)
      line += c;
    else if (!line.empty() && line.back() != ' ')
      line += ' ';
  }
  return platform::shownName(line);
}

Answer positive(Buttons buttons) { return buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok; }

/// False also when an end signal comes first.
bool inputWaits() {
  pollfd waited[] = {{STDIN_FILENO, POLLIN, 0}, {platform::endSignalDescriptor(), POLLIN, 0}};
  while (platform::endSignal() == 0)
    if (poll(waited, 2, -1) > 0 && waited[0].revents != 0) return platform::endSignal() == 0;
  return false;
}

bool askedYes() {
  if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) return false;
  std::cerr << "  [y/N] " << std::flush;
  std::string line;
  return inputWaits() && std::getline(std::cin, line) && (line == "y" || line == "Y" || line == "yes");
}

}  // namespace

Answer BatchUser::message(const std::string& text, Buttons buttons, runtime::Icon, const std::string& title,
                          Consequence consequence) {
  if (platform::endSignal() != 0) return runtime::refusalOf(buttons);
  const bool question = buttons != Buttons::Ok;
  if (question && yes_) return positive(buttons);
  const bool named = !title.empty() && title != runtime::programTitle;
  std::cerr << "pakrune: " << (named ? title + ": " : std::string()) << oneLine(text) << '\n';
  if (!question) return Answer::Ok;
  if (consequence == Consequence::MakesSomethingNew || askedYes()) return positive(buttons);
  if (platform::endSignal() == 0) std::cerr << "pakrune: refused (--yes before the switch agrees)\n";
  return runtime::refusalOf(buttons);
}

void BatchUser::showCommand(const std::string& title, const std::string& prompt, const std::string& text) {
  std::cerr << title << ": " << oneLine(prompt) << '\n' << platform::shownName(text) << '\n';
}

void BatchUser::consoleOutput(std::string_view bytes) { std::fwrite(bytes.data(), 1, bytes.size(), stderr); }

}  // namespace shell
