#include "shell/BatchTools.h"

#include <cerrno>
#include <iostream>
#include <system_error>

namespace shell {

void say(const std::string& line) { std::cerr << "pakrune: " << line << '\n'; }

int print(const std::string& text) {
  std::cout << text << std::flush;
  if (std::cout.good()) return 0;
  say("cannot write to standard output: " + std::generic_category().message(errno));
  return 1;
}

bool isPlainName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find_first_of("/\\") == std::string::npos;
}

void prepareTools(Program& program) {
  program.api.SetCurDir(program.cygwin.GetEXEPath());
  program.cygwin.AddDotToPath();
  program.cygwin.FindCygwinRoot();
  program.cygwin.CheckCygwinTools();
}

}  // namespace shell
