#include <array>

#include "archive/ArMembers.h"
#include "archive/LeftOut.h"
#include "tests/hostile/Archives.h"
#include "tests/hostile/ExtractWorld.h"

namespace fs = std::filesystem;

namespace {

using archive::Extraction;
using archive::Focus;
using archive::OverwriteAnswer;
using runtime::JobEnd;
using tests::folder;
using tests::hardLink;
using tests::Member;
using tests::symlink;
using tests::tarOf;
using tests::Texts;

using ExtractTest = tests::ExtractWorld;

TEST_F(ExtractTest, AllAndSelectedMembersWithTheirModes) {
  write("in/usr/bin/app", "app");
  write("in/usr/bin/-x", "dash");
  write("in/usr/line\nfeed\\n\xFF", "odd");
  write("in/-top");
  chmod(host("in/usr/bin/app").c_str(), 0751);
  output("cd " + host("in") + " && tar -czf ../a.tgz -- usr ./-top");
  EXPECT_EQ(fromTree("a.tgz", false, {"usr/bin/-x", "./-top"}).end, JobEnd::Done) << log_.all;
  EXPECT_EQ(contents(), "usr/ usr/bin/ usr/bin/app usr/line\nfeed\\n\xFF ");
  EXPECT_EQ(progress_.members, 2U);  // their folders are made, but are not asked for
  EXPECT_EQ(tests::modeOf(host("out/usr/bin/app")), 0751U);
  EXPECT_TRUE(logged(" Extracted file: C:\\a.tgz\n"));
  EXPECT_TRUE(told("Create folder?|C:\\out does not exist, create it?"));
  script_.answers = {OverwriteAnswer::YesToAll};
  EXPECT_EQ(fromTree("a.tgz", true, {"usr"}).end, JobEnd::Done);
  EXPECT_EQ(progress_.members, 6U);
  EXPECT_EQ(bytes("out/usr/bin/-x") + bytes("out/-top"), "dashtext");
  write("b.tar", tarOf({"-x", "./-x2", "--help", "tar: x", "gzip: y", "n", folder("n/"), "n/in"}));
  for (const bool tree : {true, false}) {  // no member is taken for an option, a remark or another
    emptyOut();
    EXPECT_EQ((tree ? fromTree("b.tar") : quick("b.tar")).end, JobEnd::Done) << log_.all;
    EXPECT_EQ(contents(), "--help -x -x2 gzip: y n/ n/in tar: x ");
  }
  emptyOut();
  write("b.tar", tarOf({"x", hardLink("tar: y link to z", "x")}));
  EXPECT_EQ(quick("b.tar").end, JobEnd::Done) << log_.all;
  EXPECT_EQ(contents(), "tar: y link to z x ");
  setenv("TMPDIR", "/nowhere", 1);  // where tar is to find a name like an option
  write("b.tar", tarOf({"-x"}));
  EXPECT_EQ(fromTree("b.tar").end, JobEnd::Failed);
  EXPECT_TRUE(
      logged(" The temporary folder cannot be used. Unable to write into 'Z:\\nowhere\\': No such file"));
}

TEST_F(ExtractTest, RefusalsHaveTheirTextsAndFocus) {
  for (const char* name : {"a.TGZ", "a.tgz"}) write(name);
  const std::string input = "Input not selected..|Please select a Tar file to extract";
  const std::string ask = "Create folder?|C:\\x\\";
  using Refusal = std::tuple<std::string, std::string, std::string, Focus>;
  for (const auto& [path, out, said, focus] : std::vector<Refusal>{
           {archive::noArchiveChosen, "C:\\out", input, Focus::ArchivePath},
           {"C:\\no.tgz", "C:\\out", "Error|Invalid tar file C:\\no.tgz", Focus::None},
           {"C:\\a.TGZ", "C:\\out", "Input file error..|Unrecognized Tar file extension", Focus::ArchivePath},
           {"C:\\a.tgz", archive::noFolderChosen, "Ouput not selected..|Please choose an output location",
            Focus::OutputFolder},
           {"C:\\a.tgz", "C:\\x\\y", ask + "y does not exist, create it?", Focus::OutputFolder},
           {"C:\\a.tgz", "C:\\x\\", ask + " does not exist, create it?", Focus::OutputFolder},
           {"C:\\a.tgz", "nowhere", "", Focus::OutputFolder},
           {"C:\\a.tgz", "C:\\x\\y\\", "", Focus::None}}) {
    EXPECT_FALSE(fs::exists(host("x"))) << out;
    person_.agrees = said.empty();
    const Extraction result = extract({archive::Extract::All, path, out});
    EXPECT_FALSE(result.toolRan) << path << out;
    EXPECT_EQ(result.focus, focus) << path << out;
    EXPECT_TRUE(said.empty() || person_.told.back() == said) << person_.told.back();
  }
  EXPECT_TRUE(fs::is_directory(host("x/y")));
  write("b.tar", tarOf({"f"}));
  EXPECT_FALSE(fromTree("b.tar", false, {"f"}).toolRan);
  EXPECT_TRUE(told("Unable To Extract|Error extracting package:\r\nC:\\b.tar\r\n\r\nNo files to extract"));
  fs::remove(root_ + "/prog/bin/tar.exe");
  EXPECT_FALSE(quick("b.tar").toolRan);
  EXPECT_TRUE(
      told("Unable to Untar|Error: Unable to locate 'tar.exe'.\r\nTry reinstalling Pakrune or Cygwin"));
}

TEST_F(ExtractTest, OverwriteAnswersOfTheTree) {
  write("a.tar", tarOf({folder("d/"), "d/x", "e", "f"}));
  using enum OverwriteAnswer;
  using Case = std::tuple<std::vector<OverwriteAnswer>, std::string, std::string>;
  const std::string time = ", 2004-01-10 13:37";
  for (const auto& [answers, then, asked] : std::vector<Case>{{{Yes, No, Yes}, "d/xoldf", "ef"},
                                                              {{YesToAll}, "d/xef", ""},
                                                              {{Yes, Cancel}, "oldoldold", "e"},
                                                              {{No}, "oldoldold", "ef"}}) {
    for (const char* name : {"out/d/x", "out/e", "out/f"}) write(name, "old");
    script_.asked.clear();
    script_.answers = answers;
    const Extraction result = fromTree("a.tar");
    EXPECT_EQ(result.toolRan, then != "oldoldold");
    EXPECT_EQ(result.end == JobEnd::Done, result.toolRan);
    EXPECT_EQ(result.focus == Focus::OutputFolder, answers.back() == Cancel);
    EXPECT_EQ(bytes("out/d/x") + bytes("out/e") + bytes("out/f"), then);
    Texts texts = {"C:\\out\\d|folder|0 bytes" + time};
    for (const char name : asked) texts.push_back(std::string("C:\\out\\") + name + "|file|1 bytes" + time);
    EXPECT_EQ(script_.asked, texts);
  }
}

TEST_F(ExtractTest, QuickExtractionKeepsWhatWasAnsweredNo) {
  write("a.tar", tarOf({folder("./"), folder("./d/"), "./d/x", "./d/y", "./-z"}));
  EXPECT_EQ(quick("a.tar").end, JobEnd::Done) << log_.all;
  EXPECT_EQ(contents(), "-z d/ d/x d/y ");
  EXPECT_EQ(progress_.members, 5U);
  for (const char* name : {"out/d/x", "out/d/y"}) write(name, "old");
  fs::remove(host("out/-z"));
  script_.answers = {OverwriteAnswer::Yes, OverwriteAnswer::No, OverwriteAnswer::Yes};
  EXPECT_EQ(quick("a.tar").end, JobEnd::Done) << log_.all;
  EXPECT_EQ(script_.asked.front(), "C:\\out\\.\\d|folder|?");
  EXPECT_EQ(bytes("out/d/x") + bytes("out/d/y") + bytes("out/-z"), "old./d/y./-z");
  EXPECT_EQ(progress_.percent, 100);
  EXPECT_EQ(progress_.members, 4U);
  write("b.tar", tarOf({"n/w", "d/x", "n/x"}));
  script_.answers = {OverwriteAnswer::Yes};
  script_.meanwhile = [this] { write("out/n/x"); };  // n was not there when it was looked for
  EXPECT_EQ(quick("b.tar").end, JobEnd::Done);
  EXPECT_EQ(script_.asked.back(), "C:\\out\\n\\x|file|?");
  script_.answers = {OverwriteAnswer::Cancel};
  EXPECT_FALSE(quick("a.tar").toolRan);
}

TEST_F(ExtractTest, LinksThatStandLeadNoMemberOut) {
  const std::string out = host("outside");
  write("h.tar", tarOf({"good", symlink("link", out), "link/new", "stands/new", symlink("via", "stands"),
                        "via/new", hardLink("to", "stands/kept"), hardLink("h link to b", "stands/kept")}));
  const std::string below = "it lies below a link: ";
  const std::string hard = "it is a hard link to something outside the output folder: ";
  for (const bool tree : {true, false}) {
    emptyOut();
    fs::create_directory_symlink(out, host("out/stands"));
    const auto run = [&] { return tree ? fromTree("h.tar") : quick("h.tar"); };
    const Extraction result = run();
    EXPECT_TRUE(result.toolRan && result.end != JobEnd::Done);
    expectNothingOutside();
    EXPECT_EQ(contents(), "good link stands via ") << log_.all;
    for (const auto& why : {below + "stands/new", below + "via/new", hard + "to", hard + "h link to b"})
      EXPECT_TRUE(logged(" Not extracted, " + why + "\n"));
    EXPECT_TRUE(std::exchange(log_.all, "").ends_with(" Extracted file: C:\\h.tar\n"));
    script_.answers = {OverwriteAnswer::YesToAll};
    run();  // the link of the first run stands now
    expectNothingOutside();
  }
  EXPECT_NE(quick("h.tar", "C:\\new").end, JobEnd::Done);
  EXPECT_TRUE(logged(" Extracted file: C:\\h.tar (exit code 2)\n"));
}

TEST_F(ExtractTest, ManyRefusedMembersDoNotFillTheLog) {
  archive::logLeftOut(log_,
                      std::vector<archive::RefusedMember>(25, {"../up", archive::LeftOut::Outside, ""}));
  EXPECT_EQ(std::count(log_.all.begin(), log_.all.end(), '\n'), 21);
  EXPECT_TRUE(log_.all.ends_with(" Not extracted either: more members that lead out of the output folder\n"));
}

TEST_F(ExtractTest, ALinkStaysAndIsFollowedOnlyInside) {
  write("out/real/old");
  fs::create_directory_symlink("real", host("out/in"));
  fs::create_directory_symlink(host("outside"), host("out/stands"));
  script_.answers = {OverwriteAnswer::YesToAll};
  for (const char* const stands : {"stands/", "stands"}) {
    write("a.tar", tarOf({folder(stands), "stands/in", "in/new", symlink("abs", "/usr/lib"), "b"}));
    EXPECT_NE(fromTree("a.tar").end, JobEnd::Done);
    expectNothingOutside();
    EXPECT_TRUE(fs::is_symlink(host("out/stands")) && fs::exists(host("out/b"))) << log_.all;
  }
  EXPECT_EQ(bytes("out/real/new"), "in/new");
  EXPECT_EQ(fs::read_symlink(host("out/abs")), "/usr/lib");
}

TEST_F(ExtractTest, PackagesAreMovedInWithoutFollowingLinks) {
  for (const char* name : {"packageSize", "data", "-x"}) write(std::string("in/") + name, name);
  writePackage("packageSize data ./-x");
  fs::create_directory(host("out"));
  fs::create_symlink(host("outside/kept"), host("out/data"));
  script_.answers = {OverwriteAnswer::YesToAll};
  EXPECT_EQ(fromTree("p.ipk").end, JobEnd::Done) << log_.all;
  expectNothingOutside();
  EXPECT_EQ(contents(), "-x data packageSize ");
  EXPECT_EQ(tree_.tag(1), "Package Size: packageSize bytes");
  EXPECT_EQ(bytes("out/data"), "data");
  EXPECT_GT(std::count(person_.consoles.begin(), person_.consoles.end(), "Extracting p.ipk"), 0);
  fs::remove_all(host("out"));
  EXPECT_EQ(quick("p.ipk").end, JobEnd::Done) << log_.all;
  EXPECT_EQ(contents(), "-x data packageSize ");
  fs::remove_all(host("out"));
  fakeTool("ar", "$real \"$@\"; case $1 in -x) kill -9 $$;; esac");
  EXPECT_EQ(quick("p.ipk").end, JobEnd::Failed);
  EXPECT_EQ(contents(), "");  // what a killed run unpacked need not be whole
  EXPECT_TRUE(logged(" ar was ended by signal 9, not extracted whole: C:\\p.ipk\n"));
  fakeTool("ar", "exec $real \"$@\"");
  write("out/data/in the way");
  EXPECT_NE(quick("p.ipk").end, JobEnd::Done);
  EXPECT_TRUE(logged(" Unable to write file: C:\\out\\data\n"));
}

TEST_F(ExtractTest, BadArchivesHaveTheirMessages) {
  output(
      "cd " + host("") +
      " && head -c 300000 /dev/urandom >big && tar -czf t.tgz outside big && head -c 200000 t.tgz >cut.tgz "
      "&& cp cut.tgz cut.tar && yes garbage | head -c 512 >g.tgz && cp g.tgz g.tar && cp g.tgz g.tbz2 && "
      "cp g.tgz g.ipk && : >e.tgz && head -c 10240 /dev/zero >e.tar && tar -cf m.tgz big");
  const std::string cut = "Unexpected end of file";
  const std::string fatal = "tar: Error is not recoverable: exiting now\n";
  const std::string notGzip = "\ngzip: stdin: not in gzip format\ntar: Child returned status 1\n" + fatal;
  const std::string noTar =
      "tar: This does not look like a tar archive\ntar: Skipping to next header\n"
      "tar: Exiting with failure status due to previous errors\n";
  using Case = std::pair<std::string, std::string>;
  for (const auto& [name, reason] :
       {Case{"cut.tgz", cut}, Case{"cut.tar", cut}, Case{"e.tgz", cut}, Case{"e.tar", "No files to extract"},
        Case{"g.tgz", notGzip}, Case{"m.tgz", notGzip}, Case{"g.tar", noTar},
        Case{"g.tbz2", "tar: Child returned status 2\n" + fatal},
        Case{"g.ipk", "file format not recognized\n"}}) {
    const bool isTar = name != "e.tar" && name != "g.ipk";
    const std::string message =
        std::string("Error Opening Package|An error occurred when attempting to open ") +
        (isTar ? "tar " : "") + "package:\r\nC:\\" + name + "\r\n\r\n" + reason;
    EXPECT_FALSE(fromTree(name).toolRan);
    EXPECT_EQ(person_.told.back(), message);
    person_.told.clear();
    if (name.starts_with("cut")) {
      EXPECT_EQ(quick(name, "C:\\cut").end, JobEnd::Failed);
      EXPECT_EQ(person_.told, Texts{message});
      continue;
    }
    EXPECT_FALSE(quick(name, "C:\\other").toolRan) << name;
    EXPECT_EQ(person_.told.back(), "Pakrune|Nothing to extract") << name;
  }
  EXPECT_FALSE(fs::exists(host("cut")));
}

TEST_F(ExtractTest, APackageThatIsCutIsToldOf) {
  write("in/debian-binary", "2.0\n");
  write("in/data.tar.gz", std::string(301, 'd'));
  write("in/control.tar.gz", std::string(101, 'c'));
  writePackage("debian-binary data.tar.gz control.tar.gz");
  const std::string whole = bytes("p.ipk");
  const std::set<std::size_t> betweenMembers = {8, 72, 433, 434, 595, 596};
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    write("cut.ipk", whole.substr(0, size));
    const bool seen = size > 8 && betweenMembers.count(size) == 0;
    EXPECT_EQ(archive::arProblem(files_, "C:\\cut.ipk"), seen ? "Unexpected end of file" : "") << size;
  }
  fs::create_directory(host("out"));
  output("cd " + host("") + " && ar rcT thin.ipk in/data.tar.gz");
  const std::string box = "Error Opening Package|An error occurred when attempting to open package:\r\nC:\\";
  for (const auto& [name, reason] : {std::pair{"cut.ipk", "Unexpected end of file"},
                                     {"thin.ipk", "A thin archive holds none of its members"}}) {
    if (name == std::string("cut.ipk")) write(name, whole.substr(0, 590));
    EXPECT_EQ(fromTree(name).end, JobEnd::Failed);
    EXPECT_EQ(tree_.nodeCount(), 0U);
    EXPECT_EQ(quick(name, "C:\\cut").end, JobEnd::Failed);
    EXPECT_EQ(person_.told, Texts(3, box + name + "\r\n\r\n" + reason));
    person_.told.clear();
  }
  EXPECT_FALSE(fs::exists(host("cut")));
  fakeTool("ar", "case $1 in -x) exec $real \"$@\" gone;; esac; exec $real \"$@\"");
  EXPECT_EQ(quick("p.ipk").end, JobEnd::Failed);
  EXPECT_TRUE(logged("no entry gone in archive\n")) << log_.all;
}

TEST_F(ExtractTest, AnOlderPackageIsACompressedTar) {
  write("in/debian-binary", "2.0\n");
  output("tar -C " + host("in") + " -czf " + host("old.ipk") + " ./debian-binary");
  EXPECT_EQ(fromTree("old.ipk").end, JobEnd::Done) << log_.all;
  EXPECT_EQ(quick("old.ipk", "C:\\quick").end, JobEnd::Done) << log_.all;
  EXPECT_EQ(bytes("out/debian-binary") + bytes("quick/debian-binary"), "2.0\n2.0\n");
}

TEST_F(ExtractTest, AListingThatDidNotEndWellIsNoArchive) {
  write("a.tar", tarOf({"1", "2", "3", "4", "5", "6"}));
  write("in/packageSize");
  writePackage("packageSize");
  fs::create_directory(host("out"));
  fs::create_directory_symlink(host("outside"), host("out/link"));  // so that attributes are asked for
  write("out/1", "old");
  script_.answers = {OverwriteAnswer::YesToAll};
  const std::string box = "Error Opening Package|An error occurred when attempting to open ";
  const std::string tar = box + "tar package:\r\nC:\\a.tar\r\n\r\n";
  const std::string cut = "case \"$*\" in *-Pt*) $real \"$@\" | head -n 2; ";
  using Case = std::array<std::string, 3>;
  for (const auto& [name, script, message] :
       {Case{"tar", "$real \"$@\" | head -n 2; kill -9 $$", tar + "tar was ended by signal 9"},
        Case{"tar", "$real \"$@\" | head -n 2; exit 3", tar + "tar ended with exit code 3"},
        Case{"tar", cut + "kill -9 $$;; esac; exec $real \"$@\"", tar + "tar was ended by signal 9"},
        Case{"ar", "case $1 in -p) kill -9 $$;; esac; exec $real \"$@\"",
             box + "package:\r\nC:\\p.ipk\r\n\r\nar was ended by signal 9"}}) {
    fakeTool(name, script);
    const std::string archive = name == "ar" ? "p.ipk" : "a.tar";
    person_.told.clear();
    EXPECT_EQ(fromTree(archive).end, JobEnd::Failed);
    EXPECT_EQ(tree_.nodeCount(), 0U);
    EXPECT_EQ(person_.told.back(), message);
    if (name == "ar") continue;
    EXPECT_EQ(quick(archive).end, JobEnd::Failed);
    EXPECT_EQ(person_.told.size(), 3U);
    EXPECT_EQ(person_.told.back(), message);
    EXPECT_EQ(contents() + bytes("out/1"), "1 link old");
  }
  EXPECT_TRUE(script_.asked.empty() && person_.consoles.empty());
  fs::permissions(root_ + "/prog/bin/tar.exe", fs::perms(0644));
  EXPECT_EQ(quick("a.tar").end, JobEnd::Failed);
  EXPECT_EQ(person_.told.back(), tar + "tar could not be started: Permission denied");
}

TEST_F(ExtractTest, OnlyRegularFilesAreArchives) {
  mkfifo(host("p.tar").c_str(), 0600);
  fs::create_symlink("/dev/zero", host("d.tar"));
  for (const std::string name : {"p.tar", "d.tar"}) {
    person_.told.clear();
    EXPECT_EQ(quick(name).end, JobEnd::Refused);
    EXPECT_EQ(archive::ListingJob(services(), "C:\\" + name, progress_).run().end, JobEnd::Refused);
    EXPECT_EQ(person_.told, Texts(2, "Error|Invalid tar file C:\\" + name));
  }
}

TEST_F(ExtractTest, AFolderThatCannotBeWrittenIsKnownBefore) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  write("a.tar", tarOf({"f"}));
  ASSERT_EQ(mkdir(host("ro").c_str(), 0555) | chmod(root_.c_str(), 0755), 0);
  EXPECT_TRUE(tests::asOrdinaryUser([this] {
    return extract({archive::Extract::All, "C:\\a.tar", "C:\\ro"}).focus == Focus::OutputFolder &&
           told("Pakrune|Error: Unable to write into folder C:\\ro\\: Permission denied") &&
           person_.consoles.empty();
  }));
}

TEST_F(ExtractTest, NoStepBeginsAfterAStop) {
  write("a.tar", tarOf({"f", "g"}));
  write("in/f");
  writePackage("f");
  const std::string waits = "touch " + root_ + "/at-work; sleep 20";
  const auto stop = [this] { busy_.requestStop(); };
  const auto tarWaits = [&] {
    fakeTool("tar", "echo f; " + waits);
    stopWhenAtWork();
  };
  const auto arWaits = [&] {
    fakeTool("ar", "case $1 in -x) touch half; " + waits + ";; esac; exec $real \"$@\"");
    stopWhenAtWork();
  };
  // Files stand in the output folder at the question; in the later ones the job gets so far as to make it.
  using Case = std::tuple<std::string, std::string, bool, std::function<void()>>;
  for (const auto& [name, archive, creates, prepare] :
       {Case{"listing", "a.tar", false, tarWaits},
        Case{"question", "a.tar", false, [&] { script_.meanwhile = stop; }},
        Case{"progress", "a.tar", true, [&] { progress_.meanwhile = stop; }},
        Case{"moving", "p.ipk", true, [&] { person_.onClosed = stop; }},
        Case{"ar", "p.ipk", true, arWaits}}) {
    SCOPED_TRACE(name);
    const bool stands = name == "question";
    fs::remove_all(host("out"));
    for (const char* file : {"out/f", "out/g"})
      if (stands) write(file, "old");
    for (Texts* const texts : {&person_.told, &person_.consoles, &script_.asked}) texts->clear();
    log_.all.clear();
    script_.answers = {OverwriteAnswer::Yes};
    prepare();
    const Extraction end = quick(archive);
    EXPECT_EQ(end.end, JobEnd::Stopped);
    EXPECT_EQ(end.toolRan, !person_.consoles.empty());
    EXPECT_EQ(log_.all, " Stopped: extracting C:\\" + archive + "\n");
    EXPECT_EQ(fs::exists(host("out")) ? contents() + bytes("out/f") : "none", stands ? "f g old" : "none");
    EXPECT_EQ(script_.asked.size(), stands ? 1U : 0U);
    EXPECT_EQ(person_.told.size(), creates ? 1U : 0U);  // nothing but the question about the folder
    EXPECT_EQ(person_.consoles.size(), archive == "p.ipk" ? 1U : 0U);
    person_.onEvents = person_.onClosed = progress_.meanwhile = script_.meanwhile = {};
    fs::remove(root_ + "/at-work");
    fakeTool("tar", "exec $real \"$@\"");
  }
}

TEST_F(ExtractTest, AStoppedRunKeepsWhatIsWhole) {
  for (const char* name : {"in/1", "in/2"}) write(name, std::string(400, 'w'));
  write("in/4half", std::string(500'000, 'h'));
  write("in/5", "after");
  fs::create_symlink("/usr/lib", host("in/3abs"));
  output("cd " + host("in") +
         " && touch -hd '1 hour ago' * && touch -d '1 hour' 2 && tar -czf ../a.tgz 1 2 3abs 4half 5");
  // Once a console is open, the compressor gives the first members and half of a large one.
  fakeTool("gzip", "[ -e " + root_ + "/half ] || exec $real \"$@\"\n$real -dc | head -c 200000; touch " +
                       root_ + "/at-work; sleep 20");
  for (const char* name : {"out/1", "out/4half", "out/5"}) write(name, "old");
  script_.answers = {OverwriteAnswer::YesToAll};
  person_.onEvents = [this] {
    if (!person_.consoles.empty()) std::ofstream(root_ + "/half") << "";
    if (fs::exists(root_ + "/at-work")) busy_.requestStop();
  };
  fakeTool("tar", "case \"$*\" in *xv*) while [ ! -e " + root_ +
                      "/half ]; do sleep 0.02; done;; esac\nexec $real \"$@\"");
  const Extraction end = quick("a.tgz");
  EXPECT_TRUE(end.end == JobEnd::Stopped && end.toolRan);
  EXPECT_EQ(contents(), "1 2 5 ");
  EXPECT_EQ(bytes("out/1") + bytes("out/5"), std::string(400, 'w') + "old");
  EXPECT_EQ(log_.all,
            " Removed, only a part of it was extracted: C:\\out\\4half\n Lost, it was being replaced: "
            "C:\\out\\4half\n Removed, only a part of it was extracted: C:\\out\\3abs\n"
            " Stopped: extracting C:\\a.tgz\n");
  log_.all.clear();
  fs::remove(root_ + "/at-work");
  stopWhenAtWork();
  fakeTool("gzip", "exec $real \"$@\"");
  fakeTool("tar", "case \"$*\" in *xv*) echo 1; touch -d 2001-01-01 $3/1 " + root_ +
                      "/at-work; sleep 20;; esac; exec $real \"$@\"");
  EXPECT_EQ(quick("a.tgz", "C:\\new").end, JobEnd::Stopped);
  EXPECT_EQ(contents("new") + log_.all, "1  Stopped: extracting C:\\a.tgz\n");
}

TEST_F(ExtractTest, ArchivesOfOtherToolsListAsTarListsThem) {
  write("in/a b/caf\xC3\xA9.txt");
  write("in/" + std::string(120, 'l') + "/deep");
  fs::create_symlink("a b", host("in/ln"));
  const std::string there = "cd " + host("") + " && ";
  const std::string python =
      "python3 -c \"import tarfile;t=tarfile.open('p.tgz','w:gz',format=tarfile.PAX_FORMAT);"
      "t.add('in');t.close()\"";
  for (const auto& [name, command] : {std::pair<std::string, std::string>("t.tbz2", "tar -cjf t.tbz2 in"),
                                      {"b.tgz", "bsdtar -czf b.tgz in"},
                                      {"x.tgz", "busybox tar -czf x.tgz in"},
                                      {"p.tgz", python}}) {
    if (output(there + "LC_ALL=C.UTF-8 " + command + " 2>/dev/null").starts_with("failed")) {
      GTEST_LOG_(INFO) << "skipped, its tool is not installed: " << command;
      continue;
    }
    fs::remove_all(host("out"));
    EXPECT_EQ(fromTree(name).end, JobEnd::Done) << name << log_.all;
    EXPECT_EQ(output("diff -r --no-dereference " + host("in") + ' ' + host("out/in")), "") << name;
    EXPECT_EQ(tree_.nodeCount(), 6U) << name;
  }
}

TEST_F(ExtractTest, ManyNamesGoThroughAFileOrNeedNone) {
  const Texts names = numbered(std::string(60, 'n') + "1", 3000);
  std::vector<Member> members;
  for (const std::string& name : names) members.emplace_back(name.c_str());
  write("m.tar", tarOf(members));
  EXPECT_EQ(fromTree("m.tar", false, {names[7]}).end, JobEnd::Done) << log_.all;
  EXPECT_EQ(std::distance(fs::directory_iterator(host("out")), fs::directory_iterator()), 2999);
  script_.answers = {OverwriteAnswer::YesToAll};
  EXPECT_EQ(quick("m.tar").end, JobEnd::Done) << log_.all;
  EXPECT_TRUE(fs::exists(host("out/" + names[7])));
  EXPECT_TRUE(fs::is_empty(root_ + "/tmp"));
}

}  // namespace
