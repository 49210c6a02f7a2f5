#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kt500sim_wait.h"

namespace kt500sim {

/// Runs the host's tar; each line of its output, errors among them, goes to `line`, which ends the run by
/// returning false. Empty when tar ended well, else how it ended. Nothing of it runs on afterwards, nor when
/// the simulator is killed.
std::string runTar(const std::vector<std::string>& arguments, Moment until,
                   const std::function<bool(std::string_view)>& line);

/// How an archive names what belongs to the home of usr8.
constexpr std::string_view besideHome = "../usr8";

/// One line of `tar -tv --numeric-owner --quoting-style=escape`.
struct Member {
  std::string mode;   ///< "-rwxr-xr-x"
  std::string owner;  ///< "500/1"
  std::string size;
  std::string name;  ///< a link's target behind it: " -> " or " link to "
};
/// False for any other line. Among them is one whose time tar shows in another form: there and behind it the
/// name's beginning cannot be told.
bool readMember(std::string_view line, Member& member);

/// Whether a member stays in the home into which it is unpacked, or in that of usr8: no absolute name, no
/// ".." on the way, no device, no link whose target leads out.
bool staysInside(const Member& member);

}  // namespace kt500sim
