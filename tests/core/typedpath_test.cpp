#include "platform/TypedPath.h"

#include "platform/HeldName.h"
#include "tests/World.h"

namespace {

using platform::holdName;
using platform::typedPath;
namespace fs = std::filesystem;

class TypedPathTest : public testworld::World {
 protected:
  std::string read(const std::string& text) const {
    const platform::TypedPath typed = typedPath(drives_, text, "C:\\here");
    EXPECT_EQ(typed.path.empty(), !typed.problem.empty()) << text;
    return typed ? typed.path : "! " + typed.problem;
  }
};

TEST_F(TypedPathTest, EveryFormBecomesTheProgramsOwn) {
  setenv("HOME", (root_ + "/disk/home").c_str(), 1);
  const std::vector<std::pair<std::string, std::string>> forms = {
      {"C:\\x", "C:\\x"},
      {"c:/x//./y/", "C:\\x\\y\\"},
      {"C:", "C:\\"},
      {"c:\\", "C:\\"},
      {"C:\\out:1", "C:\\" + holdName("out:1")},
      {"C:\\a?/b*", "C:\\" + holdName("a?") + "\\" + holdName("b*")},
      {"C:\\" + holdName("a:b"), "C:\\" + holdName("a:b")},  // what a box shows is read again as it is
      {"\"C:\\a b\"", "C:\\a b"},
      {"  C:\\a b \r\n", "C:\\a b"},
      {host("x/a\\b:c"), "C:\\x\\" + holdName("a\\b:c")},
      {"/cygdrive/c/x", "C:\\x"},
      {"/cygdrive/q/x", "Z:\\cygdrive\\q\\x"},
      {"/", "Z:\\"},
      {"~", "C:\\home"},
      {"~/p/", "C:\\home\\p\\"},
      {"~/a\\b", "C:\\home\\" + holdName("a\\b")},
      {"~other", "C:\\here\\~other"},
      {"sub/x", "C:\\here\\sub\\x"},
      {"sub\\x", "C:\\here\\sub\\x"},
      {"C:x", "C:\\here\\" + holdName("C:x")},
      {".", "C:\\here"},
      {"a\xFF", "C:\\here\\" + holdName("a\xFF")},
  };
  for (const auto& [typed, path] : forms) EXPECT_EQ(read(typed), path) << typed;
}

TEST_F(TypedPathTest, ANameThatIsThereKeepsEveryCharacter) {
  write("here/a\\b");
  write("here/blank ");
  fs::create_directories(host("real/deep"));
  fs::create_directory_symlink(host("real/deep"), host("here/link"));
  EXPECT_EQ(read("a\\b"), "C:\\here\\" + holdName("a\\b"));
  EXPECT_EQ(read("blank "), "C:\\here\\blank ");
  EXPECT_EQ(read("link/.."), "C:\\real");  // where the system goes, not what the text says
  EXPECT_EQ(read("C:\\here\\link\\..\\"), "C:\\real\\");
}

TEST_F(TypedPathTest, WhatNamesNothingIsSaidInWords) {
  EXPECT_EQ(read("Q:\\x"), "! There is no drive 'Q:'");
  EXPECT_EQ(read("\\\\server\\share"),
            "! '\\\\server\\share' is a network path; mount the share and open its folder");
  EXPECT_EQ(read(" "), "! No path was given");
  EXPECT_EQ(typedPath(drives_, "x", "").problem, "'x' is relative, and the folder that it begins at is gone");
}

}  // namespace
