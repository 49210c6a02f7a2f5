#include "shell/BatchTools.h"

#include <iostream>

namespace shell {

void say(const std::string& line) { std::cerr << "pakrune: " << line << '\n'; }

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
