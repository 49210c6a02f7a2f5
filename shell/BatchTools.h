#pragma once

#include <string>

#include "shell/Program.h"

namespace shell {

/// What the batch forms share.

void say(const std::string& line);  ///< on standard error, behind the program's name
/// On standard output. The exit status: 1 where that does not take it, which is said.
int print(const std::string& text);
/// A name is an entry of its folder itself: what would lead elsewhere names none.
bool isPlainName(const std::string& name);
/// What start-up does before any tool runs.
void prepareTools(Program& program);

}  // namespace shell
