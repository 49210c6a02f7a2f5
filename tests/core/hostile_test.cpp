#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "tests/hostile/Corpus.h"
#include "tests/hostile/ExtractWorld.h"

namespace fs = std::filesystem;
namespace {

using runtime::JobEnd;
using tests::folder;
using tests::hardLink;
using tests::holding;
using tests::symlink;
using tests::tarOf;
using tests::with;
using testworld::has;

enum class Form { Fresh, BesideLinks, All, Selected };

class HostileTest : public tests::ExtractWorld {
 protected:
  tests::Extraction extractAs(Form form, const std::string& file) {
    fs::remove_all(host("out"));
    if (form != Form::Fresh) fs::create_directory(host("out"));
    if (form == Form::BesideLinks) fs::create_symlink(host("outside"), host("out/zz"));
    log_.all.clear();
    return form == Form::Fresh || form == Form::BesideLinks ? quick(file) : fromTree(file, form == Form::All);
  }
  std::string madeOf(Form form) const {
    std::string made = fs::exists(host("out")) ? contents() : "";
    if (form == Form::BesideLinks) made.erase(made.rfind("zz "), 3);
    return made;
  }
};
constexpr Form forms[] = {Form::Fresh, Form::BesideLinks, Form::All, Form::Selected};

TEST_F(HostileTest, TheCorpusStaysInItsFolder) {
  const bool devices = mknod(host("device").c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0;
  for (const tests::Hostile& one : tests::corpus(host("outside"), devices))
    for (const Form form : forms) {
      SCOPED_TRACE(one.what + ' ' + std::to_string(static_cast<int>(form)));
      write(one.file, one.bytes);
      EXPECT_EQ(extractAs(form, one.file).end == JobEnd::Done, one.done) << log_.all;
      EXPECT_EQ(madeOf(form), one.comesOut) << log_.all;
      expectNothingOutside();
      EXPECT_TRUE(form == Form::Fresh || logged(one.log));
      EXPECT_EQ(log_.all.find("tar: x: y"), std::string::npos);
    }
}

TEST_F(HostileTest, TheOutputFolderKeepsItsModeAndOwner) {
  script_.answers = {tests::OverwriteAnswer::YesToAll};
  for (const char* const name : {"./", "/", "././", "self/./", ".", "/.", "self/."}) {
    write("h.tar",
          tarOf({symlink("self", "."), with(with(folder(name), 100, "0000700"), 108, "0000777"), "x"}));
    for (const Form form : {Form::BesideLinks, Form::All, Form::Selected}) {
      EXPECT_EQ(extractAs(form, "h.tar").end, JobEnd::Done) << log_.all;
      EXPECT_EQ(madeOf(form), "self x ");
      EXPECT_EQ(tests::modeOf(host("out")), 0755U) << name;
      EXPECT_TRUE(tests::belongsTo(host("out"), geteuid(), getegid())) << name;
    }
  }
}

TEST_F(HostileTest, NamesThatReadAsPathsOnDisk) {
  write("h.tar",
        tarOf({"/cygdrive/C/out/new", with(folder("/cygdrive/C/self/."), 100, "0000700"), "/cygdrive/C/a"}));
  script_.answers = {tests::OverwriteAnswer::YesToAll};
  for (const Form form : {Form::BesideLinks, Form::All}) {
    emptyOut();
    fs::create_directories(host("out/cygdrive/C"));
    fs::create_symlink(host("outside"), host("out/cygdrive/C/out"));
    fs::create_symlink("../..", host("out/cygdrive/C/self"));
    EXPECT_EQ((form == Form::All ? fromTree("h.tar") : quick("h.tar")).end, JobEnd::Remarks) << log_.all;
    EXPECT_EQ(contents(), "cygdrive/ cygdrive/C/ cygdrive/C/a cygdrive/C/out cygdrive/C/self ");
    expectNothingOutside();
    EXPECT_EQ(tests::modeOf(host("out")), 0755U);
  }
}

TEST_F(HostileTest, LinesThatReadInTwoWaysAreToldApartByNames) {
  const std::vector<tests::Member> files = {"a", "b link to c", "c"};
  for (const bool apart : {true, false}) {
    std::vector<tests::Member> members = files;
    members.insert(members.end(), {hardLink("h", "b link to c"), hardLink("h link to b", "c"),
                                   hardLink("k", "../up"), hardLink("g link to zz/y", "c")});
    write("h.tar", tarOf(members));
    if (!apart)
      tool("tar.exe",
           "case \"$*\" in *-Pt*) exec /usr/bin/tar \"$@\" | grep -v ' c$'; exit;; esac; exec /usr/bin/tar "
           "\"$@\"");
    EXPECT_EQ(extractAs(Form::BesideLinks, "h.tar").end, JobEnd::Remarks) << log_.all;
    EXPECT_EQ(madeOf(Form::BesideLinks),
              apart ? "a b link to c c g link to zz/ g link to zz/y h h link to b " : "a ");
    EXPECT_EQ(has(log_.all, "listed without it: h link to b\n"), !apart);
  }
}

TEST_F(HostileTest, LinksGiveWayToFoldersAndManyAreRefused) {
  std::vector<tests::Member> members = {symlink("l", "/nowhere"), folder("l/"), "l/x",
                                        symlink("out", host("outside"))};
  for (int i = 0; i < 3000; ++i)
    members.push_back(hardLink(("h " + std::to_string(i) + "\n*").c_str(), "../outside/kept"));
  for (int i = 0; i < 3000; ++i) members.emplace_back(("out/" + std::to_string(i) + "[long name]").c_str());
  members.insert(members.end(), {"h 7\n", "h 7\n+", "out2", "[x]"});
  write("h.tar", tarOf(members));
  for (const Form form : {Form::BesideLinks, Form::All}) {
    EXPECT_TRUE(extractAs(form, "h.tar").toolRan);
    EXPECT_EQ(madeOf(form), "[x] h 7\n h 7\n+ l/ l/x out out2 ") << log_.all;
    expectNothingOutside();
  }
}

TEST_F(HostileTest, CutArchivesGiveWholeFilesOrNone) {
  const bool reads = testworld::has(output("ldd " + built("bin/compress")), "libisal");
  tool("gzip", "exec " + built("bin/gzip") + " \"$@\"");
  const std::string tar = tarOf({folder("d/"), holding("d/x", std::string(1500, 'x')), "y"});
  const std::string ipk =
      tests::arOf({{"debian-binary/", "2.0\n"}, {"x/", std::string(1500, 'x')}, {"y/", "y"}});
  for (const auto& [file, whole, step] :
       {std::tuple<std::string, std::string, std::size_t>{"cut.tar", tar, 512},
        {"cut.ipk", ipk, 7},
        {"cut.tgz", reads ? tar : "", 512}})
    for (std::size_t size = file == "cut.tgz" ? 512 : 0; size <= whole.size(); size += step) {
      write(file, whole.substr(0, size));
      if (file == "cut.tgz") output("cd " + host("") + " && gzip <cut.tgz >z && mv z cut.tgz");
      const JobEnd end = extractAs(Form::Fresh, file).end;
      EXPECT_EQ(end == JobEnd::Done && file != "cut.ipk", file != "cut.ipk" && size == whole.size()) << size;
      EXPECT_EQ(end == JobEnd::Remarks, logged(" Its end is missing, and perhaps more: C:\\" + file)) << size;
      for (const char* const x : {"out/x", "out/d/x"}) EXPECT_TRUE(bytes(x).size() % 1500 == 0) << size;
      EXPECT_TRUE(end != JobEnd::Remarks || extractAs(Form::All, file).end == end) << file << size;
    }
}

TEST_F(HostileTest, SizesBeyondAllMeasure) {
  std::string deep;
  for (int i = 0; i < 2000; ++i) deep += "d/";
  const std::string petabyte("\x80\0\0\0\0\x04\0\0\0\0\0\0", 12);
  const tests::Member sparse =
      with(with({"s", 'S'}, 257, std::string("ustar  \0", 8)), 386, std::string(24, '0'));
  write("h.tar", tarOf({tests::paxPath(deep), folder("cut/"), with(sparse, 483, petabyte), "last"}));
  for (const Form form : {Form::BesideLinks, Form::All}) {
    extractAs(form, "h.tar");  // not every file system takes such a file
    EXPECT_EQ(bytes("out/last"), "last") << log_.all;
    EXPECT_EQ(output("cd " + host("out") + " && find d | wc -l"), "2000\n");
    EXPECT_LT(tests::statusOf(host("out/s")).st_blocks, 100);
  }
}

TEST_F(HostileTest, AFullDiskAndASwappedFolder) {
  write("full.tar", tarOf({"a", holding("large", std::string(100'000, 'l'))}));
  {
    const tests::FullDisk full(50'000);
    EXPECT_EQ(extractAs(Form::Fresh, "full.tar").end, JobEnd::Failed) << log_.all;
  }
  EXPECT_EQ(bytes("out/a"), "a");
  write("swap.tar", tarOf({holding("a", std::string(40'000, 'a')), "new", "kept"}));
  output("gzip -c " + host("swap.tar") + " > " + host("swap.tgz"));
  fakeTool("tar", "case \"$*\" in *xv*) touch " + root_ + "/swap;; esac; exec $real \"$@\"");
  fakeTool("gzip", "[ -e " + root_ + "/swap ] || exec $real \"$@\"\ncd " + host("") +
                       "\nhead -c 30720 swap.tar; while [ ! -e out/a ]; do sleep 0.01; done\n"
                       "mv out moved; ln -s outside out; tail -c +30721 swap.tar");
  extractAs(Form::Fresh, "swap.tgz");
  EXPECT_EQ(contents("moved"), "a kept new ") << log_.all;
  expectNothingOutside();
}

}  // namespace
