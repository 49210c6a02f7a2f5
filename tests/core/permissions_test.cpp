#include <sys/xattr.h>

#include <map>
#include <sstream>

#include "perms/Executables.h"
#include "perms/PermissionJob.h"
#include "perms/ShownModes.h"
#include "perms/TreeModes.h"
#include "tests/OnDisk.h"

namespace {

using perms::Box;
using perms::PermissionChoice;
using perms::PermissionItems;
using runtime::JobEnd;
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr PermissionChoice automatic{true, {6, 4, 4}, true};
constexpr PermissionChoice manual640{false, {6, 4, 0}, true};

PermissionChoice alone(PermissionChoice choice) {
  choice.subdirectories = false;
  return choice;
}

std::string planText(const perms::FoundItem& item, const PermissionChoice& choice, bool selected = true) {
  std::string text;
  for (const perms::PlanStep& step : planFor(item, choice, selected).steps) {
    text += step.told == perms::Told::Shown ? "show " : step.told == perms::Told::Ignored ? "ignore " : "";
    text += commandOf(step, item.path) + "\n";
  }
  return text;
}

/// As GNU findutils 4.9.0 printed it for an ordinary user: complaints stand between the records.
TEST(TreeModes, ReadsWhatFindPrinted) {
  const platform::DriveTable drives({{'C', "/srv"}});
  const std::vector<std::string> items = {"C:\\d", "C:\\gone", "C:\\f"};
  const std::string output =
      "0 d 2755 1000 100 4 2049 11 /srv/d\0"
      "1 f 644 1000 100 2 2049 12 /srv/d/a \\b\n\0"
      "!1 d 700 0 0 2 2049 13 /srv/d/shut\0"
      "find: \342\200\230/srv/d/shut\342\200\231: Permission denied\n"
      "1 d 1777 1000 100 2 2049 14 /srv/d/sub\0"
      "2 p 600 1000 100 1 2049 15 /srv/d/sub/x\0"
      "find: \342\200\230/srv/gone\342\200\231: No such file or directory\n"
      "0 f 4711 7 8 1 2049 16 /srv/f\0"
      "0 f 644 7 8 1 2049 17 /srv/f"s;  // cut off
  perms::TreeModesReader reader(drives, items);
  reader.read(output, [] { return true; });
  std::string trees;
  for (const perms::ItemTree& tree : reader.takeTrees()) {
    for (const perms::TreeEntry& entry : tree) {
      std::ostringstream text;
      text << (entry.closed ? "!" : "") << (entry.isItem ? "item " : "") << (entry.isFolder ? "d " : "")
           << (entry.isRegular ? "f " : "") << std::oct << entry.mode << std::dec << ' ' << entry.user << ':'
           << entry.group << ' ' << entry.file.second << ' ' << platform::shownName(entry.path) << '\n';
      trees += text.str();
    }
    trees += "--\n";
  }
  EXPECT_EQ(trees,
            "item d 2755 1000:100 0 C:\\d\nf 644 1000:100 12 C:\\d\\a \\b\\x0A\n"
            "!d 700 0:0 0 C:\\d\\shut\nd 1777 1000:100 0 C:\\d\\sub\n600 1000:100 0 C:\\d\\sub\\x\n--\n"
            "--\nitem f 4711 7:8 0 C:\\f\n--\n");
}

TEST(PermissionPlan, NamesTheCommandsInTheirOrder) {
  const std::string p = "\"/cygdrive/C/a b\"";
  const perms::FoundItem folder{"C:\\a b", true, false};
  const perms::FoundItem file{"C:\\a b", false, false};
  const std::string ignored = "ignore chmod.exe +x " + p + "\n";
  const struct {
    std::string plan, text;
  } cases[] = {
      {planText(folder, manual640), "show chmod.exe 755 " + p + "\nfind " + p +
                                        " ! -type l -type d -exec chmod.exe 751 {} +\nfind " + p +
                                        " ! -type l ! -type d -exec chmod.exe 640 {} +\n"},
      {planText(folder, automatic), "find " + p + " ! -type l -type d -exec chmod.exe 755 {} +\nfind " + p +
                                        " ! -type l ! -type d -exec chmod.exe 644 {} +\nchmod.exe 755 \n"},
      {planText(folder, alone(automatic)), "chmod.exe 644 " + p + "\n" + ignored},
      {planText(folder, alone(manual640)), "chmod.exe 640 " + p + "\n" + ignored},
      {planText(file, manual640), "chmod.exe 640 " + p + "\n"},
      {planText(file, automatic), "chmod.exe 644 " + p + "\n"},
      {planText({"C:\\a b", false, true}, automatic), "chmod.exe 755 " + p + "\n"},
      {planText(folder, manual640, false), "chmod.exe -R 640 " + p + "\nignore chmod.exe +x \n"},
      {planText(folder, alone(automatic), false), "chmod.exe 644 " + p + "\n" + ignored},
      {planText(file, automatic, false), "chmod.exe 644 " + p + "\n"},
  };
  for (const auto& [plan, text] : cases) EXPECT_EQ(plan, text);
}

TEST(PermissionPlan, KnowsWhatChmodKeepsAndTheUmaskTakes) {
  const perms::PlanStep digits{perms::Reach::Item, runtime::PermissionMode{6, 4, 0}};
  const perms::PlanStep execute{perms::Reach::Item, std::nullopt};
  const platform::Caller root{true, 0, {}, 027};
  const platform::Caller user{false, 7, {9}, 022};
  perms::TreeEntry folder{.path = "C:\\d", .mode = 07777, .isFolder = true, .user = 7, .group = 9};
  perms::TreeEntry file{.path = "C:\\f", .mode = 07777, .user = 7, .group = 9};
  EXPECT_EQ(modeAfter(digits, folder, 07777, root), 06640U);
  EXPECT_EQ(modeAfter(digits, file, 07777, root), 0640U);
  EXPECT_EQ(modeAfter(execute, file, 0600, root), 0710U);
  EXPECT_EQ(modeAfter(execute, folder, 0600, user), 0711U);
  EXPECT_EQ(modeAfter(digits, folder, 02755, user), 02640U);
  folder.group = 8;
  EXPECT_EQ(modeAfter(digits, folder, 06755, user), 04640U);
  file.user = 8;
  EXPECT_EQ(modeAfter(digits, file, 0755, user), 0755U);
  EXPECT_EQ(perms::modeLetters(04755), "rwsr-xr-x");
  EXPECT_EQ(perms::modeLetters(07604), "rwS--Sr-T");
  EXPECT_EQ(perms::modeLetters(01777), "rwxrwxrwt");
}

class PermissionsTest : public testworld::World {
 protected:
  PermissionsTest() {
    findTools();
    umask(022);
  }
  void folderAt(const std::string& name, unsigned mode) const {
    fs::create_directories(host(name));
    chmod(host(name).c_str(), mode);
  }
  void file(const std::string& name, unsigned mode, const std::string& text = "text") const {
    write(name, text);
    chmod(host(name).c_str(), mode);
  }
  unsigned modeOf(const std::string& name) const { return tests::modeOf(host(name)); }
  std::string modesOf(const Texts& names) const {
    std::ostringstream octal;
    for (const std::string& name : names) octal << std::oct << modeOf("pkg/" + name) << ' ';
    return octal.str();
  }
  /// Every entry below the disk with its mode, links left out.
  std::map<std::string, unsigned> allModes() const {
    std::map<std::string, unsigned> modes;
    for (const auto& entry : fs::recursive_directory_iterator(host("pkg")))
      if (!entry.is_symlink())
        modes[drives_.toWindows(entry.path().string())] = modeOf(entry.path().lexically_relative(host("")));
    return modes;
  }
  PermissionItems items(const Texts& names, bool selected = true) const {
    PermissionItems all{{}, selected, "C:\\pkg\\", ""};
    for (const std::string& name : names) all.paths.push_back(all.folder + name);
    return all;
  }
  perms::PermissionResult set(const PermissionItems& which, const PermissionChoice& choice) {
    log_.all.clear();
    person_.told.clear();
    return perms::PermissionJob(services(), which, choice).run();
  }
  perms::UndoResult undo(const perms::PermissionResult& run) {
    log_.all.clear();
    const platform::Busy::Scope busy(busy_);
    return perms::UndoJob(services(), run.undo).run();
  }
  /// A tree with all that a run may meet.
  void mixedTree() const {
    folderAt("pkg/d/sub/.hid", 0700);
    folderAt("pkg/d/sgid", 02750);
    folderAt("pkg/d/sticky", 01777);
    for (const std::string& name : {"d/a.sh"s, "d/.e.sh"s, "x.sh"s, "y"s, "d/sub/" + std::string(255, 'n')})
      file("pkg/" + name, 0600);
    file("pkg/d/b.txt", 0777);
    file("pkg/d/c", 04711, "#!/bin/sh\n");
    file("pkg/d/sub/.hid/prog", 0600, "\177ELF");
    file("pkg/d/sub/ff\xFF -\n'\"$x.bin", 0600);
    fs::create_hard_link(host("pkg/d/a.sh"), host("pkg/d/sub/same"));
    fs::create_symlink("/etc/passwd", host("pkg/d/sub/link.sh"));
    fs::create_symlink("/etc", host("pkg/d/etc"));
    mkfifo(host("pkg/d/fifo").c_str(), 0600);
  }
};

TEST_F(PermissionsTest, ModesOnDiskAfterEveryKindOfRun) {
  const Texts names = {"d",       "d/sub",           "d/sgid", "d/sticky",   "d/a.sh", "d/b.txt", "d/c",
                       "d/.e.sh", "d/sub/.hid/prog", "d/fifo", "d/sub/same", "x.sh",   "y"};
  const std::string few = "755 755 2750 1777 600 777 4711 600 600 600 600 600 ";  // all but "d" as it was
  const Texts d = {"d"}, dx = {"d", "x.sh"}, dy = {"d", "y"}, dxy = {"d", "x.sh", "y"};
  const struct {
    const char* what;
    Texts paths;
    bool selected;
    PermissionChoice choice;
    std::string modes;
  } cases[] = {
      {"auto", dxy, true, automatic, "755 755 2755 755 755 644 755 644 755 644 755 755 644 "},
      {"manual", dx, true, manual640, "751 751 2751 751 640 640 640 640 640 640 640 640 600 "},
      {"auto alone", dy, true, alone(automatic), few + "644 "},
      {"manual alone", d, true, alone(manual640), "751" + few.substr(3) + "600 "},
      {"rows", dy, false, manual640, "751 751 2751 751 640 640 640 640 640 640 640 600 640 "},
      {"rows alone", dy, false, alone(automatic), few + "644 "},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    fs::remove_all(host("pkg"));
    mixedTree();
    const auto before = allModes();
    const auto preview = previewChanges(services(), items(one.paths, one.selected), one.choice);
    ASSERT_TRUE(preview);
    EXPECT_EQ(allModes(), before);
    const perms::PermissionResult run = set(items(one.paths, one.selected), one.choice);
    EXPECT_EQ(run.end, JobEnd::Done) << log_.all << testing::PrintToString(person_.told);
    EXPECT_EQ(modesOf(names), one.modes);
    auto foretold = before;
    for (const perms::ModeChange& change : preview->list) foretold[change.path] = change.after;
    EXPECT_EQ(allModes(), foretold);
    EXPECT_TRUE(std::is_partitioned(preview->list.begin(), preview->list.end(),
                                    [](const perms::ModeChange& change) { return change.isFolder; }));
    EXPECT_EQ(modeOf("pkg/d/sub/link.sh"), 0777U);
    EXPECT_EQ(fs::status("/etc/passwd").permissions(), fs::perms(0644));
    EXPECT_EQ(undo(run).left, 0U);
    EXPECT_EQ(allModes(), before);
  }
}

TEST_F(PermissionsTest, AnOrdinaryUserSeesBeforehandWhatCannotBeDone) {
  mixedTree();
  folderAt("pkg/d/closed/in", 0700);
  file("pkg/d/closed/in/f.sh", 0600);
  file("pkg/d/closed/g.sh", 0600);
  folderAt("pkg/d/closed", 0);
  file("pkg/d/dark", 0, "#!/bin/sh\n");
  ASSERT_EQ(output("chown -hR 65534 '" + root_ + "'; chown 0 '" + host("pkg/d/b.txt") + "'"), "");
  EXPECT_TRUE(tests::asOrdinaryUser([this] {
    const auto preview = previewChanges(services(), items({"d"}), automatic);
    std::map<std::string, std::string> told;
    for (const perms::ModeChange& change : preview->list) told[change.path] = change.text();
    EXPECT_EQ(told["C:\\pkg\\d\\closed"], "--------- -> rwxr-xr-x, to be opened");
    EXPECT_EQ(told["C:\\pkg\\d\\dark"], "--------- -> rw-r--r-- or rwxr-xr-x, cannot be read yet");
    EXPECT_FALSE(told.contains("C:\\pkg\\d\\b.txt"));
    EXPECT_EQ(preview->foreign, 1U);
    const perms::PermissionResult run = set(items({"d"}), automatic);
    EXPECT_EQ(run.end, JobEnd::Failed);
    EXPECT_EQ(person_.told.size(), 1U);
    for (const char* part : {"Operation not permitted", "Permission denied"})
      EXPECT_TRUE(testworld::has(person_.told[0], part));
    EXPECT_EQ(modesOf({"d/closed", "d/closed/g.sh", "d/dark", "d/closed/in", "d/closed/in/f.sh", "d/b.txt"}),
              "755 755 755 700 755 777 ");
    undo(run);
    EXPECT_EQ(modesOf({"d/closed", "d/dark"}), "0 0 ");
    chmod(host("pkg/d/closed").c_str(), 0700);
    EXPECT_EQ(modesOf({"d/closed/g.sh", "d/closed/in", "d/closed/in/f.sh", "d/a.sh"}), "600 700 600 600 ");
    chmod(host("pkg/d/closed").c_str(), 0);
    chmod(host("pkg/d").c_str(), 0);  // the first step opens the item itself
    undo(set(items({"d"}), manual640));
    EXPECT_EQ(modesOf({"d"}), "0 ");
    chmod(host("pkg/d").c_str(), 0700);
    EXPECT_EQ(modesOf({"d/sgid", "d/sticky", "d/closed", "d/a.sh"}), "2750 1777 0 600 ");
    chmod(host("pkg/d/closed").c_str(), 0700);
    EXPECT_EQ(modesOf({"d/closed/g.sh", "d/closed/in", "d/closed/in/f.sh"}), "600 700 600 ");
    return !testing::Test::HasFailure();
  }));
}

TEST_F(PermissionsTest, UndoRestoresTenThousandAndLeavesWhatChangedSince) {
  unsigned next = 0;
  for (const std::string& folder : numbered("pkg/t/", 100))
    for (const std::string& name : numbered(folder + "/f", 100)) file(name, (next += 41) % 0777 | 0400);
  const auto before = allModes();
  const perms::PermissionResult run = set(items({"t"}), automatic);
  ASSERT_EQ(run.end, JobEnd::Done);
  chmod(host("pkg/t/1/f1").c_str(), 0711);
  fs::remove(host("pkg/t/1/f2"));
  fs::remove(host("pkg/t/1/f3"));
  fs::create_symlink("f5", host("pkg/t/1/f3"));
  fs::rename(host("pkg/t/2"), host("pkg/elsewhere"));
  fs::create_directory_symlink("../elsewhere", host("pkg/t/2"));
  const perms::UndoResult undone = undo(run);
  EXPECT_GE(undone.left, 3U + 90U);
  EXPECT_EQ(log_.all, " Undo Set Permissions: " + std::to_string(undone.restored) + " restored, " +
                          std::to_string(undone.left) + " left as they are\n");
  auto after = allModes();
  EXPECT_EQ(after["C:\\pkg\\t\\1\\f1"], 0711U);
  EXPECT_EQ(modesOf({"elsewhere/f1", "elsewhere/f99"}), "644 644 ");
  std::size_t wrong = 0;
  for (const auto& [path, mode] : before)
    wrong +=
        path.starts_with("C:\\pkg\\t\\2") || path.starts_with("C:\\pkg\\t\\1\\f") ? 0 : after[path] != mode;
  EXPECT_EQ(wrong, 0U);
  EXPECT_EQ(undo(run).restored, 0U);
}

TEST_F(PermissionsTest, FailuresAreToldAndLogged) {
  for (const char* name : {"pkg/a", "pkg/b", "pkg/d/c"}) file(name, 0600);
  const std::string failed = " FAILED to set Permissions", in = " items in C:\\pkg\\\n";
  const std::string failed640 = failed + "(640): ", failedAuto = failed + " automatically: ";
  const std::string done640 = " Permissions(640) set: ", doneAuto = " Permissions automatically set: ";
  const std::string error = "Error..|", unable = error + "Unable to Set Permissions";
  const std::string rows = "C:\\pkg\\*\n", noRight = error + "no right\n";
  const std::string gone =
      error + "chmod: cannot access '" + host("pkg/gone") + "': No such file or directory\n";
  const std::string killed = error + "half\nchmod was ended by signal 9", two = error + "to 751\nto 640\n";
  const std::string chmod = "chmod.exe", find = "find.exe", ar = "ar.exe";
  const Texts ab = {"a", "b"}, a = {"a"}, d = {"d"};
  const std::string oddFirst = "case $1 in 755) echo odd;; esac; exec /usr/bin/chmod \"$@\"";
  const std::string noExecute = "[ $1 != +x ] || echo no", rest = "[ $1 = 755 ] || echo to $1";
  const struct {
    std::string tool, script;
    Texts paths;
    bool selected;
    PermissionChoice choice;
    Texts told;
    std::string log;
  } cases[] = {
      {chmod, "echo no right", ab, true, manual640, {noRight}, failed640 + "2" + in},
      {chmod, "echo no right", ab, false, automatic, {noRight, noRight}, failedAuto + rows},
      {chmod, "exit 3", a, true, automatic, {error + "chmod ended with exit code 3"}, failedAuto + "1" + in},
      {chmod, "echo half; kill -9 $$", a, true, automatic, {killed}, failedAuto + "1" + in},
      {chmod, "", ab, true, manual640, {unable}, failed640 + "2" + in},
      {find, "", d, true, automatic, {unable}, failedAuto + "1" + in},
      {find, "kill -9 $$", d, true, automatic, {unable}, failedAuto + "1" + in},
      {chmod, oddFirst, d, true, manual640, {"Pakrune|result = odd\n"}, done640 + "1" + in},
      {chmod, rest, d, true, manual640, {"Pakrune|result = ", two}, failed640 + "1" + in},
      {chmod, noExecute, d, true, alone(automatic), {}, doneAuto + "1" + in},
      {ar, "", {"gone", "a"}, true, automatic, {gone}, failedAuto + "2" + in},
      {ar, "", {}, false, automatic, {}, doneAuto + rows}};
  environment_.set("PATH", "");
  for (const auto& one : cases) {
    SCOPED_TRACE(one.tool + ": " + one.script);
    one.script.empty() ? void(fs::remove(root_ + "/prog/bin/" + one.tool)) : tool(one.tool, one.script);
    const perms::PermissionResult run = set(items(one.paths, one.selected), one.choice);
    EXPECT_EQ(person_.told, one.told);
    EXPECT_EQ(log_.all, one.log);
    EXPECT_EQ(run.end == JobEnd::Done, one.log.starts_with(" P"));
    fs::remove(root_ + "/prog/bin/" + one.tool);
    link(one.tool.substr(0, one.tool.find('.')), one.tool);
  }
}

TEST_F(PermissionsTest, LinksAmongTheItemsAreLeftOut) {
  file("pkg/a", 0600);
  file("out/t", 0600);
  fs::create_symlink("../out/t", host("pkg/l"));
  fs::create_directory_symlink("../out", host("pkg/ld"));
  const std::string left = " Left out, it is a link: C:\\pkg\\l\n Left out, it is a link: C:\\pkg\\ld\n";
  EXPECT_EQ(set(items({"l", "a", "ld"}), automatic).end, JobEnd::Done);
  EXPECT_EQ(log_.all, left + " Permissions automatically set: 3 items in C:\\pkg\\\n");
  tool("chmod.exe", "echo ran");
  EXPECT_EQ(set(items({"l", "ld"}), automatic).end, JobEnd::Failed);
  EXPECT_EQ(log_.all, left + " FAILED to set Permissions automatically: 2 items in C:\\pkg\\\n");
  EXPECT_TRUE(person_.told.empty());
  EXPECT_EQ(modeOf("out/t"), 0600U);
}

TEST_F(PermissionsTest, AStopLeavesTheRestAndUndoPutsBackWhatWasDone) {
  for (const char* name : {"pkg/a.sh", "pkg/d/b", "pkg/z"}) file(name, 0600);
  chmod(host("pkg/d").c_str(), 0700);
  perms::PermissionResult run;
  {
    const platform::Busy::Scope busy(busy_);
    person_.onEvents = [this] { modeOf("pkg/d") == 0751 ? busy_.requestStop() : void(); };
    run = set(items({"a.sh", "d", "z"}), manual640);
    person_.onEvents = {};
    EXPECT_EQ(run.end, JobEnd::Stopped);
    EXPECT_EQ(person_.told, Texts{"Pakrune|result = "});
    EXPECT_EQ(log_.all,
              " Stopped: setting permissions, after 1 of 3 items\n"
              " FAILED to set Permissions(640): 3 items in C:\\pkg\\\n");
    EXPECT_EQ(undo(run).end, JobEnd::Stopped);
    EXPECT_TRUE(log_.all.starts_with(" Stopped: Undo Set Permissions\n"));
  }
  EXPECT_EQ(modesOf({"a.sh", "d", "z"}), "640 751 600 ");
  chmod(host("pkg/z").c_str(), 0640);  // by somebody else: it was never reached
  EXPECT_EQ(undo(run).end, JobEnd::Done);
  EXPECT_EQ(modesOf({"a.sh", "d", "d/b", "z"}), "600 700 600 640 ");
}

TEST_F(PermissionsTest, ExecutablesComeFolderByFolder) {
  for (const char* name :
       {"pkg/z.sh", "pkg/m/n/x.bin", "pkg/m/a.EXE", "pkg/.h.sh", "pkg/.hd/y.com", "pkg/plain"})
    file(name, 0600);
  file("pkg/noted.sh", 0600);
  const bool noted = setxattr(host("pkg/noted.sh").c_str(), "user.DOSATTRIB", "0x4", 3, 0) == 0;
  fs::create_symlink("z.sh", host("pkg/l.sh"));
  Texts found = perms::findExecutables(files_, "C:\\pkg", [] { return true; });
  if (!noted) std::erase(found, "C:\\pkg\\noted.sh");
  ASSERT_EQ(found.size(), 4U) << testing::PrintToString(found);
  EXPECT_EQ(found[0], "C:\\pkg\\z.sh");
  const auto at = [&found](const char* path) { return std::find(found.begin(), found.end(), path); };
  EXPECT_EQ(at("C:\\pkg\\m\\n\\x.bin") - at("C:\\pkg\\m\\a.EXE"), 1);
  EXPECT_NE(at("C:\\pkg\\.hd\\y.com"), found.end());
}

TEST_F(PermissionsTest, ALongListOfExecutablesIsSplit) {
  for (int i = 0; i < 4000; ++i) file("pkg/d/" + std::string(200, 'x') + std::to_string(i) + ".sh", 0600);
  tool("chmod.exe", "[ $# -lt 9 ] || echo $# >>'" + host("counts") + "'; exec /usr/bin/chmod \"$@\"");
  EXPECT_EQ(set(items({"d"}), automatic).end, JobEnd::Done);
  EXPECT_EQ(modeOf("pkg/d/" + std::string(200, 'x') + "3999.sh"), 0755U);
  EXPECT_NE(bytes("counts").find('\n'), bytes("counts").rfind('\n'));
}

TEST_F(PermissionsTest, TheDialogShowsKindsOrWhatIsOnDisk) {
  for (const char* name : {"pkg/a", "pkg/b"}) file(name, 0755);
  file("pkg/c", 0750);
  folderAt("pkg/d", 0700);
  file("pkg/run.sh", 0600);
  const auto shown = [this](const Texts& names) {
    std::string text;
    for (const Box box : perms::shownModes(services(), items(names).paths).boxes)
      text += box == Box::Mixed ? '?' : box == Box::Checked ? 'x' : '.';
    return text;
  };
  EXPECT_TRUE(perms::automaticByDefault(stored_));
  EXPECT_EQ(shown({"d"}) + shown({"run.sh"}) + shown({"a"}), "xxxx.xx.xxxxx.xx.xxx.x..x..");
  EXPECT_EQ(shown({"a", "d"}), "xx.x..x..");
  stored_.setPermissionOptions("0");
  EXPECT_EQ(shown({"a"}), "xxxx.xx.x");
  EXPECT_EQ(shown({"a", "b", "c"}), ".xxx.x?.?");
  EXPECT_EQ(shown({"a", "gone"}), ".????????");
  EXPECT_EQ(perms::shownModes(services(), items({"a", "d"}).paths).folderInvolved, true);
  EXPECT_EQ(perms::shownModes(services(), items({"a", "b"}).paths).folderInvolved, false);
  using Stored = std::tuple<const char*, bool, bool>;
  for (const auto& [text, byDefault, kinds] :
       {Stored{"", true, true}, Stored{"-1", false, true}, Stored{"1x", true, true},
        Stored{"0", false, false}, Stored{"2", false, false}}) {
    stored_.setDefaultPermissionMode(text);
    stored_.setPermissionOptions(text);
    EXPECT_EQ(perms::automaticByDefault(stored_), byDefault) << text;
    EXPECT_EQ(perms::kindsByDefault(stored_), kinds) << text;
  }
}

TEST_F(PermissionsTest, ManyItemsAreListedInThreeRuns) {
  stored_.setPermissionOptions("0");
  const Texts names = numbered("f", 1200);
  tool("ls.exe", "echo $# >>'" + host("counts") + "'; shift; for f; do echo '-rw-r--r-- 1'; done");
  const perms::ShownModes shown = perms::shownModes(services(), items(names).paths);
  EXPECT_EQ(bytes("counts"), "502\n501\n200\n");
  EXPECT_EQ(std::count(shown.boxes.begin(), shown.boxes.end(), Box::Mixed), 0);
  tool("ls.exe", "[ $# = 501 ] && kill -9 $$; shift; for f; do echo '-rw-r--r-- 1'; done");
  EXPECT_EQ(perms::shownModes(services(), items(names).paths).boxes[1], Box::Mixed);
}

}  // namespace
