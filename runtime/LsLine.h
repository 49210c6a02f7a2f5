#pragma once

#include <string>
#include <string_view>

namespace runtime {

/// The long format of `ls -l`, as GNU coreutils ls 9.1 prints it with LC_ALL=C.UTF-8 and
/// QUOTING_STYLE=escape: one line an entry, fields separated by blanks: mode string, link count, owner and
/// group (numbers with -n), size in bytes, date, time, name (a link adds " -> " and its target).
///
/// The mode string is a type letter ("d" folder, "-" plain file, "l" link, ...) and three triads of rights;
/// an 11th character ("+" or ".") may follow when the entry has further access rules. A text that is shorter
/// than what is asked for gives what there is of it.

enum class LsClass { Owner, Group, Everyone };

std::string lsModeColumn(std::string_view line);  ///< the first 10 characters, whatever they say
std::string lsModeString(std::string_view line);  ///< up to the first blank; empty when there is none
char lsType(std::string_view line);               ///< the type letter, 0 for an empty text

/// The three letters of a class: "r" or "-", "w" or "-", then "x", "s", "S", "t", "T" or "-".
std::string_view lsTriad(std::string_view line, LsClass whose);

}  // namespace runtime
