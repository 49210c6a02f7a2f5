#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/Files.h"

namespace runtime {

/// The extensions of the terminal's executables, in the order in which they are shown.
constexpr std::array<std::string_view, 7> executableExtensions{".exe", ".ktl", ".bin", ".com",
                                                               ".bat", ".cmd", ".sh"};

/// Decided by a name or path alone: the text from its last "." on, without regard to case. A text of fewer
/// than four characters never is one.
bool IsExecutableName(std::string_view name);

constexpr std::size_t executableStart = 10;  ///< bytes that are looked at

/// By the first bytes of a file: "#!/bin/sh", or ELF.
bool startsAsExecutable(std::string_view start);

/// By the name, else by the first bytes of the file. What cannot be opened (a folder,
/// too) holds no such bytes.
bool IsExecutable(const platform::Files& files, std::string_view path);

}  // namespace runtime
