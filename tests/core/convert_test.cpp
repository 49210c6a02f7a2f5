#include "convert/ConvertJob.h"
#include "runtime/PathBatches.h"
#include "tests/OnDisk.h"

namespace {

using runtime::JobEnd;
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

class ConvertTest : public testworld::World {
 protected:
  ConvertTest() { findTools(); }

  void realTool() const { fs::create_symlink(built("bin/dos2unix.exe"), root_ + "/prog/bin/dos2unix.exe"); }
  /// Keeps what it is given, a run a line.
  void fakeTool(const std::string& does) const {
    tool("dos2unix.exe", "echo \"$#\" >>'" + host("runs") + "'\n" + does);
  }
  JobEnd convert(const Texts& names) {
    person_.told.clear();
    log_.all.clear();
    Texts paths;
    for (const std::string& name : names) paths.push_back("C:\\" + name);
    return convert::ConvertJob(services(), {paths, "C:\\"}, [this] { ++begun_; }).run().end;
  }

  int begun_ = 0;
};

TEST_F(ConvertTest, FilesAreConvertedAndBinaryOnesCounted) {
  realTool();
  const Texts names = {"a b", "-x", "caf\xC3\xA9", "binary"};
  for (const std::string& name : names) write(name, name == "binary" ? std::string("\0\r\n", 3) : "x\r\n");
  EXPECT_EQ(convert(names), JobEnd::Done);
  for (const std::string& name : names) EXPECT_EQ(bytes(name).back(), '\n');
  EXPECT_EQ(bytes("a b"), "x\n");
  EXPECT_EQ(person_.told,
            (Texts{"dos2unix..|This will convert the line endings on 4 selected files to unix format.\r\n"
                   "Are you sure you want to do this?",
                   "dos2unix Finished Successfully|Converted 3 file(s) to unix line endings.\rSkipped 1 "
                   "binary file(s)."}));
  EXPECT_EQ(log_.all, " dos2unix successfull: 4 files in C:\\\n");
  EXPECT_EQ(convert({"a b", "gone"}), JobEnd::Failed);
  EXPECT_EQ(person_.told.back(), "Error..|dos2unix: " + host("a b") +
                                     " has unix line ends already\ndos2unix: " + host("gone") +
                                     ": No such file or directory\n");
  EXPECT_EQ(log_.all, " FAILED to convert to unix: 2 files in C:\\\n");
}

TEST_F(ConvertTest, WhatIsRefusedTouchesNothing) {
  EXPECT_EQ(convert({"a"}), JobEnd::Refused);
  EXPECT_EQ(person_.told, Texts{"Unable to Convert File|Error: Unable to locate 'dos2unix.exe'.\r\n"
                                "Try reinstalling Pakrune or Cygwin"});
  fakeTool("echo done.");
  EXPECT_EQ(convert({}), JobEnd::Failed);
  EXPECT_TRUE(person_.told.empty());
  EXPECT_EQ(log_.all, " FAILED to convert to unix: 0 files in C:\\\n");
  person_.agrees = false;
  EXPECT_EQ(convert({"a"}), JobEnd::Refused);
  EXPECT_EQ(log_.all, "");
  EXPECT_FALSE(fs::exists(host("runs")));
  EXPECT_EQ(begun_, 0);
}

TEST_F(ConvertTest, LongSelectionsGoInRunsAndTheFirstBadOneEndsThem) {
  fakeTool("echo 'skipping binary file x'; echo 'skipping binary file y'; echo done.");
  EXPECT_EQ(convert(numbered("f", 1200)), JobEnd::Done);
  EXPECT_EQ(bytes("runs"), "503\n502\n201\n");  // with two options each
  EXPECT_EQ(person_.told.back(),
            "dos2unix Finished Successfully|Converted 1197 file(s) to unix line endings.\r"
            "Skipped 3 binary file(s).");  // a first line does not count
  for (const auto& [script, told] :
       {std::pair("[ $# -gt 502 ] && echo done. || echo 'cannot'", "Error..|cannot\n"),
        {"[ $# -gt 502 ] && echo done. || kill -9 $$", "Error..|dos2unix was ended by signal 9"},
        {"echo done.; [ $# -gt 502 ] || exit 3", "Error..|dos2unix ended with exit code 3"}}) {
    fs::remove(host("runs"));
    fakeTool(script);
    EXPECT_EQ(convert(numbered("f", 1200)), JobEnd::Failed);
    EXPECT_EQ(person_.told.back(), told);
    EXPECT_EQ(bytes("runs"), "503\n502\n");
    EXPECT_EQ(log_.all, " FAILED to convert to unix: 1200 files in C:\\\n");
  }
}

TEST_F(ConvertTest, AToolThatCannotStartAndAStopAreFailures) {
  fs::create_symlink("/nowhere", root_ + "/prog/bin/dos2unix.exe");
  EXPECT_EQ(convert({"a"}), JobEnd::Failed);
  EXPECT_EQ(person_.told.back(), "Error..|Unable to convert files to unix format");
  fakeTool("sleep 30");
  const platform::Busy::Scope busy(busy_);
  person_.yields = 0;
  person_.onEvents = [this] { person_.yields > 3 ? busy_.requestStop() : void(); };
  EXPECT_EQ(convert(numbered("f", 3)), JobEnd::Stopped);
  EXPECT_EQ(log_.all,
            " Stopped: converting, after 0 of 1 runs\n FAILED to convert to unix: 3 files in C:\\\n");
}

TEST(PathBatches, AreCutWhereTheSystemWouldRefuseThemToo) {
  const std::string deep(4000, 'd');
  const Texts batches = runtime::pathBatches(Texts(400, "C:\\" + deep));
  EXPECT_EQ(batches.size(), 2U);
  for (const std::string& batch : batches) EXPECT_LT(batch.size(), 1'000'001U);
  EXPECT_TRUE(runtime::pathBatches({}).empty());
}

}  // namespace
