#include "perms/OwnershipJob.h"
#include "tests/OnDisk.h"

namespace {

using runtime::JobEnd;
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

class OwnershipTest : public testworld::World {
 protected:
  OwnershipTest() {
    findTools();
    for (const char* name : {"chown.exe", "chgrp.exe"})
      tool(name, "for word in \"$@\"; do echo \"$word\"; done >>'" + host("runs") +
                     "'\necho \"= $# $0\" >>'" + host("runs") + "'\n. '" + host("does") + "'");
    does("");
  }
  std::string bin(const std::string& tool) const { return root_ + "/prog/bin/" + tool; }
  void does(const std::string& script) const {
    write("does", script);
    fs::remove(host("runs"));
  }
  JobEnd set(const perms::Ownership& what, const Texts& paths) {
    person_.told.clear();
    log_.all.clear();
    return perms::OwnershipJob(services(), what, {paths, "C:\\pkg\\"}).run();
  }
  int runs() const { return std::stoi(output("grep -c ^= '" + host("runs") + "' || true")); }
};

TEST_F(OwnershipTest, RunsNameTheAccountAndEveryPath) {
  EXPECT_EQ(set(perms::ownerTo("root"), {"C:\\pkg\\a b", "C:\\pkg\\c", "C:\\pkg\\d"}), JobEnd::Done);
  EXPECT_TRUE(bytes("runs").starts_with("-R\nroot\n" + host("pkg/a b") + "\n")) << bytes("runs");
  EXPECT_EQ(log_.all, " Owner(root) successfully set: 3 files in C:\\pkg\\\n");
  does("");
  EXPECT_EQ(set(perms::groupToKT500(), {}), JobEnd::Done);
  EXPECT_TRUE(bytes("runs").starts_with("-R\nKT500\n" + host("pkg"))) << bytes("runs");
  EXPECT_EQ(log_.all, " Group(1) successfully set: C:\\pkg\\*\n");
  EXPECT_TRUE(person_.told.empty());
}

TEST_F(OwnershipTest, TheFirstBadRunEndsItAndIsTold) {
  for (const auto& [script, told] :
       {std::pair("[ $# -gt 502 ] || echo 'chgrp: no right'", "Error..|chgrp: no right\n"),
        {"[ $# -gt 502 ] || exit 1", "Error..|chgrp ended with exit code 1"},
        {"[ $# -gt 502 ] || kill -9 $$", "Error..|chgrp was ended by signal 9"}}) {
    does(script);
    EXPECT_EQ(set(perms::groupToKT500(), numbered("C:\\pkg\\f", 1200)), JobEnd::Failed);
    EXPECT_EQ(runs(), 2);
    EXPECT_EQ(person_.told, Texts{told});
    EXPECT_EQ(log_.all, " FAILED to set Group(1): 1200 files in C:\\pkg\\\n");
  }
  fs::remove(bin("chown.exe"));
  environment_.set("PATH", "");
  EXPECT_EQ(set(perms::ownerTo("usr5"), numbered("C:\\pkg\\f", 1)), JobEnd::Failed);
  EXPECT_EQ(person_.told, Texts{"Error..|Unable to Set Owner"});
  EXPECT_EQ(log_.all, " FAILED to set Owner(usr5): 1 files in C:\\pkg\\\n");
}

TEST_F(OwnershipTest, LinksAreLeftOut) {
  write("pkg/a");
  fs::create_symlink("/etc/passwd", host("pkg/link"));
  EXPECT_EQ(set(perms::ownerTo("usr1"), {"C:\\pkg\\link", "C:\\pkg\\a"}), JobEnd::Done);
  EXPECT_EQ(bytes("runs").find("link"), std::string::npos);
  EXPECT_TRUE(log_.all.starts_with(" Left out, it is a link: C:\\pkg\\link\n"));
  does("");
  EXPECT_EQ(set(perms::ownerTo("usr1"), {"C:\\pkg\\link"}), JobEnd::Failed);
  EXPECT_FALSE(fs::exists(host("runs")));
  EXPECT_TRUE(log_.all.ends_with(" FAILED to set Owner(usr1): 1 files in C:\\pkg\\\n"));
}

TEST_F(OwnershipTest, AStopLeavesTheRest) {
  const platform::Busy::Scope busy(busy_);
  does("sleep 30");
  person_.yields = 0;
  person_.onEvents = [this] { person_.yields > 3 ? busy_.requestStop() : void(); };
  EXPECT_EQ(set(perms::ownerTo("usr1"), numbered("C:\\pkg\\f", 600)), JobEnd::Stopped);
  EXPECT_EQ(runs(), 1);
  EXPECT_EQ(log_.all,
            " Stopped: setting Owner(usr1), after 0 of 2 runs\n"
            " FAILED to set Owner(usr1): 600 files in C:\\pkg\\\n");
  EXPECT_TRUE(person_.told.empty());
}

/// The real tools, by number, as root.
TEST_F(OwnershipTest, OnDiskTheNumbersAreTheTerminals) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root";
  for (const char* tool : {"chown.exe", "chgrp.exe"}) {
    fs::remove(bin(tool));
    fs::create_symlink(built(std::string("bin/") + tool), bin(tool));
  }
  write("pkg/sub/x");
  fs::create_symlink("x", host("pkg/sub/inner"));
  EXPECT_EQ(set(perms::ownerTo("usr8"), {"C:\\pkg\\sub"}), JobEnd::Done);
  EXPECT_EQ(set(perms::groupToKT500(), {"C:\\pkg\\sub"}), JobEnd::Done);
  for (const char* path : {"pkg/sub", "pkg/sub/x"}) {
    EXPECT_TRUE(tests::belongsTo(host(path), 507, 1)) << path;
  }
}

}  // namespace
