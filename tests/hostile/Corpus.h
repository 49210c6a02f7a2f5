#pragma once

#include <string>
#include <vector>

#include "tests/hostile/Archives.h"

namespace tests {

/// An archive that no friend would make, and what must become of it, whichever way it is extracted.
struct Hostile {
  std::string what;
  std::string file;  ///< by its ending the kind
  std::string bytes;
  std::string comesOut;  ///< what ExtractWorld::contents gives
  bool done = true;      ///< all came out, and nobody has to be told of anything
  std::string log = {};  ///< a part of it
};

/// `devices`: whether this machine lets us make device files.
inline std::vector<Hostile> corpus(const std::string& outside, bool devices) {
  const std::string long255(255, 'n');
  const std::string out = "its name leads out of the output folder: ";
  const std::string below = "it lies below a link: ";
  return {
      {"traversal", "h.tar", tarOf({"a", "../up", "d/../../up", "./../up"}), "a ", false, out + "./../up"},
      {"absolute name", "h.tar", tarOf({"/abs/x", "a"}), "a abs/ abs/x ", true, "is absolute: /abs/x"},
      {"link, then write", "h.tar", tarOf({symlink("l", outside), "l/new", "l/kept", "a"}), "a l ", false,
       below + "l/new"},
      {"link by link", "h.tar", tarOf({symlink("l", outside), symlink("m", "l"), "m/new", "a"}), "a l m ",
       false, below + "m/new"},
      {"link inside", "h.tar", tarOf({folder("d/"), symlink("l", "d"), "l/x"}), "d/ d/x l "},
      {"hard link out", "h.tar", tarOf({hardLink("h", outside + "/kept"), "a"}), "a ", false, "h"},
      {"hard link up", "h.tar", tarOf({hardLink("h", "../outside/kept"), "a"}), "a ", false, "h"},
      {"pipe, set-user-id", "h.tar", tarOf({{"p", '6'}, with("s", 100, "0004755")}), "p| s(4755) "},
      {"device", "h.tar", tarOf({with(with({"n", '3'}, 329, "0000001"), 337, "0000003"), "a"}),
       devices ? "a n% " : "a ", devices, devices ? "" : "tar: n: Cannot mknod"},
      {"the terminal's other home", "h.tar", tarOf({folder("../usr8/"), "../usr8/set.ini", "../usr8/x", "a"}),
       "a ", false, "it belongs to another home on the terminal: ../usr8\n Extracted"},
      {"duplicates: the last wins", "h.tar", tarOf({holding("x", "1"), holding("x", "x")}), "x "},
      {"differ in case", "h.tar", tarOf({"x", "X"}), "X x "},
      {"long names", "h.tar", tarOf({gnuName(long255), "cut", paxPath('p' + long255.substr(1)), "cut"}),
       long255 + " p" + long255.substr(1) + ' '},
      {"PAX path against ustar path", "h.tar", tarOf({paxPath("../up"), "good", paxPath("good"), "../up"}),
       "good ", false, out + "../up"},
      {"volume label", "h.tar", tarOf({{"label", 'V'}, "a"}), "a "},
      {"odd names", "h.tar",
       tarOf({"l\nf", "\x1b[2J", "\x9b", "-x", "--help", "--to-command=false", "tar: x: y"}),
       "\x1b[2J --help --to-command=false -x l\nf tar: x: y \x9b "},
      {"wrong suffix", "h.tgz", tarOf({"a"}), "", false},
      {"xz in a .tgz", "h.tgz",
       std::string("\xFD"
                   "7zXZ\0",
                   6),
       "", false},
      {"zstd in a .tgz", "h.tgz", "\x28\xB5\x2F\xFD", "", false},
      {"thin", "h.ipk", "!<thin>\n" + arOf({{"/0", ""}}).substr(8), "", false},
      {"long names of GNU ar", "h.ipk", arOf({{"//", "a-long-member-name/\n"}, {"/0", "1"}}),
       "a-long-member-name "},
      {"long names of BSD ar", "h.ipk", arOf({{"#1/18", "a-long-member-name1"}}), "a-long-member-name "},
      {"ar: folders, duplicates, up", "h.ipk",
       arOf({{"//", "sub/keep/\n../up/\n"}, {"/0", "1"}, {"x/", "1"}, {"/10", "1"}, {"x/", "x"}}),
       "sub/ sub/keep x ", false, out + "../up"},
  };
}

}  // namespace tests
