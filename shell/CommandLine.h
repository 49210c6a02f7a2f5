#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/TypedPath.h"
#include "shell/PackOptions.h"

namespace shell {

enum class Form { Normal, Folder, Open, Extract, Pack, QuickPack, Permissions, Paths };

/// What a command-line text asks for.
struct CommandLine {
  Form form = Form::Normal;
  /// Folder: the folder to open; nullopt opens none, an empty text is a folder that does not exist.
  std::optional<std::string> folder;
  /// Open..Permissions: the record, field 0 the switch. Paths: the pieces, quotes removed.
  std::vector<std::string> fields;
  /// The record has as many fields as its form needs; false: a normal start without "initDir".
  bool complete = true;
};

/// Reads the text after the program's name. Switches are told by their leading characters, case-sensitively,
/// in the order -d, -open, -extract, -pack, -qpack, -perms; anything else that is not empty is a list of
/// paths.
CommandLine parseCommandLine(std::string_view text);

/// Options of our own that stand before a switch, and the rest.
struct HostArguments {
  bool help = false;
  bool version = false;
  bool batch = false;   ///< --batch
  bool yes = false;     ///< --yes
  PackOptions pack;     ///< for -qpack
  std::string unknown;  ///< a word before the switch that begins with "--" and is no option
  std::string text;     ///< the command-line text in Windows form
  /// Why a path names nothing here, of the first such; it stands in the text as it was typed.
  std::string problem;
};

/// How a typed path becomes one of the program's (platform::typedPath with the caller's folder).
using TranslatePath = std::function<platform::TypedPath(std::string_view)>;
using HoldName = std::function<std::string(std::string_view)>;

/// Makes the command-line text from argv (program name left out). One argument with CR LF fields and one
/// argument a field both give a record; folder fields and path lists are translated; name fields are put in
/// held form. An argument of "-d" or of a path list that begins and ends with a double quote is taken as it
/// stands.
HostArguments readArguments(const std::vector<std::string>& arguments, const TranslatePath& translate,
                            const HoldName& hold);

}  // namespace shell
