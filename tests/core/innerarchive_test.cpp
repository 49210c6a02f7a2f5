#include "archive/InnerArchive.h"

#include "archive/ArchiveTreeBuilder.h"
#include "archive/ListingJob.h"
#include "archive/PackageControl.h"
#include "archive/TakeOutJob.h"
#include "tests/OnDisk.h"

namespace fs = std::filesystem;

namespace {

using namespace archive;
using runtime::JobEnd;

class Unwatched : public ListingProgress {
 public:
  void showPercent(float) override {}
};

class InnerArchiveTest : public testworld::World {
 protected:
  InnerArchiveTest() {
    findTools();
    write("in/sub/x.tgz", "bytes");
    write("in/folder.tar/f");
    shell("ln -s $PWD/in/sub/x.tgz in/ln.tgz; ln in/sub/x.tgz in/twin.tgz");
  }
  void shell(const std::string& command) const { ASSERT_EQ(output("cd " + host("") + " && " + command), ""); }

  Listing list(const std::string& name) {
    Unwatched progress;
    const platform::Busy::Scope busy(busy_);
    Listing listing = ListingJob(services(), "C:\\" + name, progress).run();
    EXPECT_EQ(listing.end, JobEnd::Done) << log_.all;
    return listing;
  }
  static NodeId find(const ArchiveTree& tree, const std::string& member) {
    for (NodeId node = 1; node <= tree.nodeCount(); ++node)
      if (tree.memberPath(node) == member) return node;
    return 0;
  }
  UnpackedMember unpack(const std::string& name, const std::string& member) {
    const platform::Busy::Scope busy(busy_);
    return InnerArchiveJob(services(), "C:\\" + name, member).run();
  }
  bool nothingLeft() const { return fs::is_empty(root_ + "/tmp"); }
};

TEST_F(InnerArchiveTest, UnpacksAMemberThatGoesWithItsFolder) {
  write("in/-C.tar", "bytes");
  shell(
      "tar -C in -czf a.tgz ./sub && tar -C in -cf b.tar -- -C.tar && (cd in && ar -qc ../p.ipk -- -C.tar)");
  shell("tar -cPf c.tar --transform s,in/sub,, in/sub/x.tgz");
  for (const auto& [archive, member] :
       {std::pair("a.tgz", "./sub/x.tgz"), {"b.tar", "-C.tar"}, {"p.ipk", "-C.tar"}, {"c.tar", "/x.tgz"}}) {
    const UnpackedMember made = unpack(archive, member);
    ASSERT_EQ(made.end, JobEnd::Done) << archive << made.problem;
    EXPECT_EQ(tests::bytesOf(*drives_.toHost(made.path)), "bytes");
    EXPECT_FALSE(nothingLeft());
  }
  EXPECT_TRUE(nothingLeft());
}

TEST_F(InnerArchiveTest, OnlyFilesThatStayInsideAreOpened) {
  shell("mkfifo in/pipe.tgz; tar -C in -cf a.tar sub twin.tgz ln.tgz pipe.tgz folder.tar/f");
  shell("tar -rPf a.tar ../disk/in/twin.tgz");
  const ArchiveTree tree = list("a.tar").tree;
  EXPECT_TRUE(isInnerArchive(tree, find(tree, "sub/x.tgz")));
  for (const char* member : {"", "twin.tgz", "ln.tgz", "pipe.tgz", "folder.tar", "folder.tar/f", "sub"})
    EXPECT_FALSE(isInnerArchive(tree, find(tree, member))) << member;
  constexpr const char* noFile = "The archive has no file of that name";
  for (const auto& [member, reason] :
       {std::pair("ln.tgz", noFile), {"pipe.tgz", noFile}, {"../disk/in/twin.tgz", "Its name leads out"}}) {
    EXPECT_EQ(unpack("a.tar", member).end, JobEnd::Refused) << member;
    EXPECT_TRUE(testworld::has(person_.told.back(), "Error Opening Package|Unable to open " +
                                                        std::string(member) + ":\r\n" + reason));
  }
  EXPECT_TRUE(nothingLeft());
}

TEST_F(InnerArchiveTest, WhatFailsIsToldAndAStopLeavesNothing) {
  shell("tar -C in -cf a.tar sub/x.tgz");
  const std::string onExtract = "case \"$*\" in *x*-T*) ";
  tool("tar.exe",
       onExtract + "echo 'tar: x: Cannot write: No space left on device'; exit 2;; esac; exec tar \"$@\"");
  EXPECT_EQ(unpack("a.tar", "sub/x.tgz").end, JobEnd::Failed);
  EXPECT_TRUE(testworld::has(person_.told.back(), "The disk is full: no space is left in '"));
  tool("tar.exe", onExtract + "exec kill -9 $$;; esac; exec tar \"$@\"");
  EXPECT_EQ(unpack("a.tar", "sub/x.tgz").end, JobEnd::Failed);
  EXPECT_TRUE(testworld::has(person_.told.back(), ":\r\ntar was ended by signal 9"));
  tool("tar.exe", onExtract + "touch " + root_ + "/at-work; exec sleep 20;; esac; exec tar \"$@\"");
  person_.onEvents = [this] {
    if (fs::exists(root_ + "/at-work")) busy_.requestStop();
  };
  const std::size_t told = person_.told.size();
  EXPECT_EQ(unpack("a.tar", "sub/x.tgz").end, JobEnd::Stopped);
  EXPECT_EQ(log_.all, " Stopped: opening sub/x.tgz\n");
  EXPECT_EQ(person_.told.size(), told);
  EXPECT_TRUE(nothingLeft());
}

TEST(PackageControl, FieldsOfTheFirstParagraph) {
  const auto line = [](const std::string& text) {
    const auto control = parsePackageControl(text);
    return control ? packageLine(*control, {}) : "none";
  };
  EXPECT_EQ(line("package:  kt-app \r\nDescription: long\n Version: no\n\tArchitecture: no\nVERSION: 1.2\n"
                 "Version: 9\nInstalled-Size: 120\n\nArchitecture: arm\n"),
            " Package kt-app, version 1.2, installed size 120");
  EXPECT_EQ(line("Package: a\xFF\x1B[2J\nArchitecture: arm"), " Package a\\xFF\\x1B[2J, for arm");
  EXPECT_EQ(line("Package: " + std::string(101, 'x')), " Package " + std::string(100, 'x') + "...");
  for (const std::string& none : {std::string("Version: 1\n"), std::string("\nPackage: late\n"),
                                  std::string(": :\n"), "Package: a\n" + std::string(longestControl, '\n')})
    EXPECT_EQ(line(none), "none");
}

TEST(PackageControl, MembersOfTheControlArchive) {
  const auto members = [](const std::string& size, const char* kinds) {
    std::string listing;
    for (const char* name : {"./control", "./postrm", "preinst", "./sub/prerm", "./control"})
      listing += *kinds++ + ("rw-r--r-- 0/0 " + size + " 2006-05-04 13:22 ") + name + "\n";
    const ControlMembers found = controlMembers(listing);
    std::string text = found.control;
    for (const std::string& script : found.scripts) text += ' ' + script;
    return text;
  };
  EXPECT_EQ(members("65536", "-----"), "./control preinst postrm");
  EXPECT_EQ(members("65537", "--d--"), " postrm");
  EXPECT_EQ(members("7", "l----"), " preinst postrm");
}

TEST_F(InnerArchiveTest, APackageIsToldInTheLog) {
  write("c/control", "Package: kt-app\nVersion: 1.2\nArchitecture: arm\nInstalled-Size: 120\n");
  for (const char* name : {"c/prerm", "c/postinst", "c/md5sums"}) write(name);
  shell(
      "mkdir q && touch q/debian-binary && tar -C c --sort=name -czf q/control.tar.gz . && cd q && ar -qc "
      "../a.ipk * && "
      "tar -czf ../old.ipk . && gzip -d control.tar.gz && ar -qc ../plain.ipk *");
  const std::string told =
      " Package kt-app, version 1.2, for arm, installed size 120; it runs scripts: postinst, prerm\n";
  for (const char* name : {"a.ipk", "old.ipk", "plain.ipk"}) {
    log_.all.clear();
    list(name);
    EXPECT_EQ(log_.all, told) << name;
  }
  log_.all.clear();
  shell(
      "cd q && ar -qc ../none.ipk debian-binary && head -c 2300 control.tar >cut && head -c 1100000 "
      "/dev/urandom >big && "
      "tar -rf control.tar big && tar -czf ../big.ipk control.tar && ar -qc ../bigger.ipk control.tar && "
      "mv cut control.tar && ar -qc ../cut.ipk control.tar");
  for (const char* name : {"none.ipk", "bigger.ipk", "cut.ipk"}) list(name);
  tool("tar.exe", "case \"$*\" in *xO*) echo Package: half; exit 2;; esac; exec tar \"$@\"");
  list("a.ipk");
  tool("tar.exe", "case \"$*\" in *\" -T \"*) touch " + host("unpacked") + ";; esac; exec tar \"$@\"");
  list("big.ipk");
  EXPECT_FALSE(fs::exists(host("unpacked")));
  EXPECT_EQ(log_.all, "");
  EXPECT_TRUE(person_.told.empty() && nothingLeft());
}

TEST_F(InnerArchiveTest, TakesOutWhatIsTickedBelowTheOutermostEntries) {
  shell("rm in/*.tgz; tar -C in -cf a.tar ./sub ./folder.tar; touch in/sub/y; tar -C in -rf a.tar ./sub/y");
  shell("tar -cPf c.tar --transform s,in,/etc, in/sub/y; tar -cPf up.tar in/sub/y in/../in/sub/x.tgz");
  struct Row {
    const char* archive;
    std::vector<std::string> entries;
    const char* unticked;
    const char* offered;  // "": refused, which is told
    const char* files;
  };
  for (const Row& row :
       std::initializer_list<Row>{{"a.tar", {"./sub/y", "./sub"}, "", "\\.\\sub", "./sub/x.tgz ./sub/y "},
                                  {"a.tar",
                                   {"./sub", "./folder.tar/f"},
                                   "./sub/y",
                                   "\\.\\sub\\.\\folder.tar\\f",
                                   "./folder.tar/f ./sub/x.tgz "},
                                  {"c.tar", {""}, "", "\\etc", "./etc/sub/y "},
                                  {"up.tar", {"in"}, "", "", ""}}) {
    ArchiveTree tree = list(row.archive).tree;
    if (*row.unticked != 0) tree.setChecked(find(tree, row.unticked), false);
    std::vector<NodeId> entries;
    for (const std::string& entry : row.entries) entries.push_back(find(tree, entry));
    const platform::Busy::Scope busy(busy_);
    const TakenOut out = TakeOutJob(services(), std::string("C:\\") + row.archive, "it", tree, entries).run();
    const bool refused = *row.offered == 0;
    ASSERT_EQ(out.end == JobEnd::Done, !refused) << log_.all;
    EXPECT_EQ(nothingLeft() && !person_.told.empty(), refused);
    if (refused) continue;
    const std::string folder = out.place->path() + "\\contents";
    std::string offered;
    for (const std::string& path : out.paths) offered += path.substr(folder.size());
    EXPECT_EQ(offered, row.offered);
    EXPECT_EQ(output("cd " + *drives_.toHost(folder) + " && find -type f | sort | tr '\\n' ' '"), row.files);
  }
}

}  // namespace
