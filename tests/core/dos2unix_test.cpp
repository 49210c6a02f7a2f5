#include <gtest/gtest.h>
#include <sys/xattr.h>

#include "tests/OnDisk.h"

namespace {

namespace fs = std::filesystem;

/// The built program, as the runner starts it.
class Dos2UnixTest : public testworld::World {
 protected:
  Dos2UnixTest() { fs::current_path(host("")); }
  ~Dos2UnixTest() override { fs::current_path("/"); }

  /// Its output; the status is kept.
  std::string run(const std::string& files) {
    std::string text = output("'" + program_ + "' --safe -U  " + files + " 2>&1; echo $?");
    text.pop_back();
    status_ = text.back() - '0';
    text.pop_back();
    return text;
  }
  bool clean() const { return output("ls -A " + host("") + " | grep -c dos2unix- || true") == "0\n"; }

  std::string program_ = built("bin/dos2unix.exe");
  int status_ = 0;
};

TEST_F(Dos2UnixTest, OnlyLineEndsChange) {
  const std::string large = std::string((1 << 20) - 1, 'x') + "\r\ny\r";  // a line end between two blocks
  const std::string largeAfter = std::string((1 << 20) - 1, 'x') + "\ny\r";
  using Row = std::pair<std::string, std::string>;
  const auto texts = {Row{"a\r\nb\r\n", "a\nb\n"},
                      Row{"a\rb\r\r\nc", "a\rb\r\nc"},
                      Row{"\r\n", "\n"},
                      Row{"no end\r\nlast\r", "no end\nlast\r"},
                      Row{"\t\v\f\b\x1B[1m\r\n\x1A", "\t\v\f\b\x1B[1m\n\x1A"},
                      Row{"caf\xC3\xA9 \xE9\r\n", "caf\xC3\xA9 \xE9\n"},
                      Row{large, largeAfter},
                      Row{"", ""}};
  int count = 0;
  for (const auto& [before, after] : texts) write(std::to_string(count++), before);
  EXPECT_TRUE(run("[0-7]").ends_with("dos2unix: done.\n"));
  EXPECT_EQ(status_, 0);
  count = 0;
  for (const auto& [before, after] : texts)
    EXPECT_TRUE(bytes(std::to_string(count++)) == after) << before.substr(0, 20);
  EXPECT_TRUE(clean());
}

TEST_F(Dos2UnixTest, BinaryFilesAreLeftAloneAndSaidSo) {
  using namespace std::string_literals;
  for (const std::string& text :
       {"a\0\r\n"s, "a\x01\r\n"s, "\x7F\r\n"s, "\x1A\r\n"s, "\377\376a\0\r\0\n\0"s}) {
    write("b", text);
    EXPECT_EQ(run("b"), "dos2unix: skipping binary file b\ndos2unix: done.\n") << text;
    EXPECT_EQ(bytes("b"), text);
  }
}

TEST_F(Dos2UnixTest, AFileKeepsAllButItsBytes) {
  write("f", "a\r\n");
  write("same", "a\n");
  ASSERT_TRUE(tests::giveTo(host("f"), 500, 1));
  chmod(host("f").c_str(), 04751);
  const bool attributes = setxattr(host("f").c_str(), "user.note", "kept", 4, 0) == 0;
  fs::create_symlink("f", host("link"));
  fs::last_write_time(host("same"), fs::file_time_type::clock::now() - std::chrono::hours(1));
  const struct stat before = tests::statusOf(host("same"));
  run("link same");
  EXPECT_EQ(bytes("f"), "a\n");
  EXPECT_TRUE(fs::is_symlink(host("link")));
  EXPECT_EQ(tests::modeOf(host("f")), 04751U);
  EXPECT_TRUE(tests::belongsTo(host("f"), 500, 1));
  char value[5] = "";
  EXPECT_TRUE(!attributes || getxattr(host("f").c_str(), "user.note", value, 4) == 4);
  const struct stat after = tests::statusOf(host("same"));
  EXPECT_TRUE(after.st_mtim.tv_nsec == before.st_mtim.tv_nsec && after.st_ino == before.st_ino);
}

TEST_F(Dos2UnixTest, OtherNamesStayNamesOfTheFile) {
  write("one", "a\r\n\r\n");
  chmod(host("one").c_str(), 04755);
  fs::create_hard_link(host("one"), host("two"));
  EXPECT_TRUE(run("one two").ends_with("done.\n"));
  EXPECT_EQ(bytes("two"), "a\n\n");
  EXPECT_EQ(tests::statusOf(host("one")).st_ino, tests::statusOf(host("two")).st_ino);
  EXPECT_EQ(tests::modeOf(host("one")), 04755U);
  EXPECT_TRUE(clean());
}

TEST_F(Dos2UnixTest, SomebodyElsesFileIsConvertedInItsPlaceByWhoMayWriteIt) {
  if (geteuid() != 0 || !tests::ordinaryUserGetsAbout()) GTEST_SKIP() << "needs two users";
  program_ = root_ + "/dos2unix";  // out of a build that may be closed to others
  fs::copy_file(built("bin/dos2unix.exe"), program_);
  for (const std::string& folder : {root_, host("")}) ASSERT_TRUE(tests::giveTo(folder, 65534, 65534));
  for (const std::string name : {"shared", "closed"}) {
    write(name, "a\r\n");
    ASSERT_TRUE(tests::giveTo(host(name), 500, 1));
    chmod(host(name).c_str(), name == "shared" ? 0666 : 0644);
  }
  EXPECT_TRUE(tests::asOrdinaryUser([this] {
    return run("shared closed") ==
           "dos2unix: converted shared to unix format\ndos2unix: closed: Permission denied\n";
  }));
  EXPECT_EQ(bytes("shared"), "a\n");
  EXPECT_EQ(bytes("closed"), "a\r\n");
  EXPECT_TRUE(tests::belongsTo(host("shared"), 500, 1));
  EXPECT_EQ(tests::modeOf(host("shared")), 0666U);
  EXPECT_TRUE(clean());
}

/// Nobody can wait for a slow disk: the run is killed if it has not ended half a second after it was asked
/// to.
TEST_F(Dos2UnixTest, ASlowOrBrokenDiskCostsNothingAndLeavesNoCopies) {
  for (const char* const name : {"a", "b"}) write(name, "x\r\n");
  const std::string converter = "env LD_PRELOAD=" + built("tests/libslow_sync.so") +
                                " ASAN_OPTIONS=verify_asan_link_order=0 " + program_;
  const std::string said = output("bash -c 'coproc " + converter +
                                  " a b; read -r line <&${COPROC[0]}; kill $COPROC_PID;"
                                  " timeout 5 tail --pid=$COPROC_PID -f /dev/null;"
                                  " kill -KILL $COPROC_PID 2>&1; echo $line'");
  EXPECT_TRUE(testworld::has(said, "at work\n"));
  EXPECT_EQ(output("BROKEN_DISK=1 " + converter + " a b || echo failed"),
            "dos2unix: a: Input/output error\ndos2unix: b: Input/output error\nfailed\n");
  EXPECT_TRUE(clean());
  EXPECT_EQ(bytes("a") + bytes("b"), "x\r\nx\r\n");
}

TEST_F(Dos2UnixTest, WhatCannotBeConvertedIsNamedAndNeverCalledDone) {
  write("good", "a\r\n");
  fs::create_directory(host("folder"));
  ASSERT_EQ(mkfifo(host("pipe").c_str(), 0600), 0);
  const std::string said = run("gone folder pipe good 'caf\xC3\xA9 \xFF: done.\nskipping binary file'");
  EXPECT_EQ(status_, 1);
  EXPECT_EQ(bytes("good"), "a\n");
  EXPECT_TRUE(
      said.starts_with("dos2unix: gone: No such file or directory\ndos2unix: folder: it is a folder\n"
                       "dos2unix: pipe: it is no regular file\n"
                       "dos2unix: caf\xC3\xA9 \\xFF: \\x64one.\\x0A\\x73kipping binary file: No such"))
      << said;
  EXPECT_EQ(said.find("done."), std::string::npos);
}

TEST_F(Dos2UnixTest, AFullDiskOrAClosedFolderLosesNothing) {
  const std::string text(100'000, 'x');
  write("f", text + "\r\n");
  const std::string said =
      output("sh -c 'ulimit -f 1; trap \"\" XFSZ; exec " + built("bin/dos2unix.exe") + " f'");
  EXPECT_TRUE(said.starts_with("failed: dos2unix: f: File too large")) << said;
  EXPECT_EQ(bytes("f"), text + "\r\n");
  EXPECT_TRUE(clean());
}

}  // namespace
