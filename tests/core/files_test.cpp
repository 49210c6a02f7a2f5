#include "platform/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>

#include "platform/CopyAttributes.h"
#include "platform/DirectorySearch.h"
#include "runtime/FileClass.h"
#include "tests/OrdinaryUser.h"

namespace fs = std::filesystem;
using platform::DriveTable;
using platform::Files;
using runtime::FileClass;
using runtime::InfoClass;

namespace {

/// A drive C: of its own.
class FilesTest : public testing::Test {
 protected:
  FilesTest() {
    std::ofstream(host("a.txt")) << "text";
    fs::create_directory(host("sub"));
    fs::create_symlink("sub", host("toSub"));
    fs::create_symlink("nothing", host("dangling"));
    mkfifo(host("fifo").c_str(), 0600);
  }
  ~FilesTest() override { fs::remove_all(root_); }

  std::string host(const std::string& name) const { return root_ + "/" + name; }
  std::size_t count() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(root_), fs::directory_iterator()));
  }

  std::string root_ = [] {
    std::string name = fs::temp_directory_path() / "files-test-XXXXXX";
    return std::string(mkdtemp(name.data()));
  }();
  DriveTable drives_{{{'C', root_}}};
  Files files_{drives_};
};

mode_t modeOf(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

}  // namespace

TEST_F(FilesTest, KindsFollowLinks) {
  EXPECT_TRUE(files_.fileExists("C:\\a.txt"));
  EXPECT_TRUE(files_.fileExists("C:\\fifo"));
  EXPECT_FALSE(files_.fileExists("C:\\toSub"));
  EXPECT_TRUE(files_.folderExists("C:\\toSub"));
  EXPECT_FALSE(files_.fileExists("C:\\dangling"));
  EXPECT_TRUE(files_.entryExists("C:\\dangling"));
  EXPECT_FALSE(files_.entryExists("\\\\server\\share"));
  EXPECT_EQ(files_.fileSize("C:\\a.txt"), 4U);
  EXPECT_EQ(files_.fileSize("C:\\sub"), std::nullopt);
}

TEST_F(FilesTest, NamesAreExact) {
  EXPECT_EQ(files_.fullName("C:\\a.txt"), "a.txt");
  for (const char* path : {"C:\\A.txt", "C:\\", "C:\\sub\\..", "C:\\a.txt\\x"})
    EXPECT_EQ(files_.fullName(path), "") << path;
  EXPECT_EQ(files_.fullName("Z:" + root_), root_.substr(root_.find_last_of('/') + 1));  // the folder of C:
  EXPECT_EQ(platform::longName(files_, "C:\\gone"), "");
  EXPECT_EQ(platform::extensionOf("C:\\a.b\\name"), "");
  EXPECT_EQ(platform::extensionOf("x.tar.GZ"), "GZ");
}

TEST_F(FilesTest, EntriesAreHeldAndSorted) {
  std::ofstream(host("a\\\xFF")) << "";
  const auto found = files_.entries("C:\\");
  ASSERT_TRUE(found);
  ASSERT_EQ(found->size(), 6U);
  EXPECT_EQ((*found)[1].name, "a\xEF\x81\x9C\xEF\x83\xBF");
  EXPECT_EQ(files_.fullName("C:\\" + (*found)[1].name), (*found)[1].name);
  EXPECT_TRUE(std::is_sorted(found->begin(), found->end(), [](auto& a, auto& b) { return a.name < b.name; }));
  EXPECT_EQ(std::count_if(found->begin(), found->end(), [](auto& e) { return e.isFolder; }), 2);
  EXPECT_EQ(files_.entries("C:\\a.txt"), std::nullopt);
}

TEST_F(FilesTest, CopyKeepsBytesAndModeAndReplacesALinkNotItsTarget) {
  ASSERT_EQ(chmod(host("a.txt").c_str(), 04751), 0);
  fs::create_symlink("victim", host("link"));
  ASSERT_TRUE(files_.writeText("C:\\victim", "keep"));
  ASSERT_TRUE(files_.copyFile("C:\\a.txt", "C:\\link"));
  EXPECT_EQ(files_.readBytes("C:\\link", 100), "text");
  EXPECT_EQ(files_.readBytes("C:\\victim", 3), "kee");
  EXPECT_EQ(modeOf(host("link")), 04751U);
  EXPECT_FALSE(files_.copyFile("C:\\fifo", "C:\\new"));
  EXPECT_FALSE(files_.copyFile("C:\\a.txt", "C:\\sub"));
  EXPECT_FALSE(files_.copyFile("C:\\a.txt", "C:\\fifo"));
  EXPECT_EQ(files_.readBytes("C:\\fifo", 1), std::nullopt);
}

TEST_F(FilesTest, AFullFileSystemIsKnownBeforehand) {
  EXPECT_EQ(files_.writeProblem("C:\\sub"), 0);
  enum { known, missed, noMount };
  const pid_t child = fork();
  if (child == 0) {
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", host("sub").c_str(), "tmpfs", 0, "size=16k") != 0)
      _exit(noMount);
    const bool room = files_.writeProblem("C:\\sub") == 0;
    std::ofstream(host("sub/big")) << std::string(100000, 'x');
    _exit(room && files_.writeProblem("C:\\sub") == ENOSPC ? known : missed);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WEXITSTATUS(status) == noMount) GTEST_SKIP() << "no file system of its own";
  EXPECT_EQ(WEXITSTATUS(status), known);
}

/// Every file system, whatever it can, ends alike: moved, or what stood there is spared.
TEST_F(FilesTest, AMoveSparesWhatNobodyAgreedToReplace) {
  const auto unable = [](const char*, const char*) {
    errno = EINVAL;
    return -1;
  };
  const auto noLinks = [](const char*, const char*) {
    errno = EPERM;
    return -1;
  };
  const platform::MoveCalls& system = platform::systemMoveCalls;
  for (const platform::MoveCalls& calls : {system, {unable, system.linkTo}, {unable, noLinks}}) {
    ASSERT_TRUE(files_.writeText("C:\\new", "new"));
    for (const char* taken : {"a.txt", "dangling", "sub"})
      EXPECT_EQ(moveUnlessTaken(host("new"), host(taken), calls), EEXIST) << taken;
    EXPECT_EQ(files_.readBytes("C:\\a.txt", 9), "text");
    EXPECT_EQ(moveUnlessTaken(host("new"), host("moved"), calls), 0);
    EXPECT_EQ(files_.readBytes("C:\\moved", 9), "new");
    EXPECT_FALSE(files_.entryExists("C:\\new"));
    EXPECT_EQ(files_.moveFile("C:\\moved", "C:\\a.txt", platform::Existing::Spared), EEXIST);
    EXPECT_EQ(files_.moveFile("C:\\moved", "C:\\gone\\x", platform::Existing::Spared), ENOENT);
    EXPECT_EQ(files_.moveFile("C:\\moved", "C:\\other", platform::Existing::Replaced), 0);
  }
}

TEST_F(FilesTest, AMoveToAnotherFileSystemKeepsModeAndOwnerAndSpares) {
  const std::string far = "/dev/shm/files-test-" + std::to_string(getpid());
  const DriveTable drives({{'C', root_}, {'M', far}});
  const Files files(drives);
  std::error_code failed;
  fs::create_directory(far, failed);
  const auto cleanUp = std::shared_ptr<void>(nullptr, [&far](void*) { fs::remove_all(far); });
  if (geteuid() == 0) {
    ASSERT_EQ(chown(host("a.txt").c_str(), 65534, 65533), 0);
  }
  chmod(host("a.txt").c_str(), 04640);
  struct stat near {
  }, other{};
  if (failed || stat(root_.c_str(), &near) != 0 || stat(far.c_str(), &other) != 0 ||
      near.st_dev == other.st_dev)
    GTEST_SKIP() << "no second file system";
  std::ofstream(far + "/taken") << "theirs";
  std::stop_source stopped;
  stopped.request_stop();
  using platform::Existing;
  EXPECT_EQ(files.moveFile("C:\\a.txt", "M:\\x", Existing::Spared, platform::Stop(stopped.get_token())),
            ECANCELED);
  EXPECT_EQ(files.moveFile("C:\\a.txt", "M:\\taken", Existing::Spared), EEXIST);
  EXPECT_EQ(files.readBytes("M:\\taken", 9), "theirs");
  EXPECT_EQ(std::distance(fs::directory_iterator(far), fs::directory_iterator()), 1);
  EXPECT_EQ(files.moveFile("C:\\a.txt", "M:\\taken", Existing::Replaced), 0);
  EXPECT_FALSE(files.entryExists("C:\\a.txt"));
  EXPECT_EQ(files.readBytes("M:\\taken", 9), "text");
  struct stat status {};
  ASSERT_EQ(stat((far + "/taken").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 04640U);
  EXPECT_TRUE(geteuid() != 0 || (status.st_uid == 65534 && status.st_gid == 65533));
}

/// Bits that lend the owner's rights stay behind when the owner does.
TEST_F(FilesTest, NoOwnersRightsPassToAnother) {
  if (geteuid() != 0 || !tests::ordinaryUserGetsAbout()) GTEST_SKIP() << "takes two users";
  chmod(host("a.txt").c_str(), 06755);
  chmod(root_.c_str(), 0777);
  EXPECT_TRUE(tests::asOrdinaryUser([this] {
    return files_.writeText("C:\\mine", "x") && files_.copyFile("C:\\a.txt", "C:\\copy") &&
           platform::copyModeAndOwner(drives_, "C:\\a.txt", "C:\\mine");
  }));
  EXPECT_EQ(modeOf(host("mine")), 0755U);
  EXPECT_EQ(modeOf(host("copy")), 0755U);
}

TEST_F(FilesTest, AFailedWriteLeavesWhatWasThere) {
  ASSERT_TRUE(files_.writeText("C:\\big", std::string(300000, 'x')));
  const std::size_t before = count();
  const auto oldHandler = signal(SIGXFSZ, SIG_IGN);
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  rlimit small = old;
  small.rlim_cur = 100000;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const bool copied = files_.copyFile("C:\\big", "C:\\a.txt");
  const bool written = files_.writeText("C:\\a.txt", std::string(200000, 'y'));
  setrlimit(RLIMIT_FSIZE, &old);
  signal(SIGXFSZ, oldHandler);
  EXPECT_FALSE(copied);
  EXPECT_FALSE(written);
  EXPECT_EQ(files_.readBytes("C:\\a.txt", 100), "text");
  EXPECT_EQ(count(), before);
}

TEST_F(FilesTest, WritingKeepsTheModeOfWhatItReplaces) {
  ASSERT_EQ(chmod(host("a.txt").c_str(), 0640), 0);
  ASSERT_TRUE(files_.writeText("C:\\a.txt", "new"));
  EXPECT_EQ(modeOf(host("a.txt")), 0640U);
}

TEST_F(FilesTest, FoldersAreMadeOneLevel) {
  EXPECT_TRUE(files_.createFolder("C:\\sub"));
  EXPECT_FALSE(files_.createFolder("C:\\a.txt"));
  EXPECT_FALSE(files_.createFolder("C:\\x\\y"));
  EXPECT_EQ(files_.createFolderExclusively("C:\\sub"), EEXIST);
  EXPECT_EQ(files_.createFolderExclusively("C:\\own"), 0);
  EXPECT_EQ(modeOf(host("own")), 0700U);
}

TEST_F(FilesTest, DeleteTreeStaysInsideAndOpensFolders) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  ASSERT_TRUE(files_.writeText("C:\\sub\\keep", "k"));
  fs::create_directories(host("tree/closed/in"));
  fs::create_symlink("../../sub", host("tree/closed/out"));
  chmod(host("tree/closed/in").c_str(), 0);
  chmod(host("tree/closed").c_str(), 0500);
  chmod(host("tree").c_str(), 0500);
  if (geteuid() == 0) {
    for (const char* name : {"", "tree", "tree/closed", "tree/closed/in"})
      ASSERT_EQ(chown(host(name).c_str(), 65534, 65534), 0);
  }
  EXPECT_TRUE(tests::asOrdinaryUser([this] { return files_.deleteTree("C:\\tree"); }));
  EXPECT_FALSE(files_.entryExists("C:\\tree"));
  EXPECT_TRUE(files_.deleteTree("C:\\toSub"));
  EXPECT_TRUE(files_.fileExists("C:\\sub\\keep"));
  EXPECT_FALSE(files_.deleteTree("C:\\tree"));
}

TEST_F(FilesTest, DeleteTreeRefusesADriveAndWhatIsAbove) {
  for (const char* path : {"C:\\", "C:\\.", "C:\\sub\\..", "C:\\sub\\..\\", "sub", ""})
    EXPECT_FALSE(files_.deleteTree(path)) << path;
  EXPECT_TRUE(files_.folderExists("C:\\sub"));
}

TEST_F(FilesTest, DeleteTreeGoesDeeperThanDescriptorsAndPathsReach) {
  int here = open(root_.c_str(), O_DIRECTORY | O_CLOEXEC);
  for (int depth = 0; depth < 3000; ++depth) {
    ASSERT_EQ(mkdirat(here, "deep", 0700), 0);
    const int next = openat(here, "deep", O_DIRECTORY | O_CLOEXEC);
    close(here);
    here = next;
  }
  close(here);
  EXPECT_TRUE(files_.deleteTree("C:\\deep"));
  EXPECT_FALSE(files_.entryExists("C:\\deep"));
}

TEST_F(FilesTest, FileClassSortsFoldersFromFiles) {
  FileClass listing(drives_);
  EXPECT_FALSE(listing.Refresh("C:\\sub\\*"));
  EXPECT_FALSE(listing.Refresh("C:\\gone\\*"));
  fs::create_directories(host("sub/..."));
  EXPECT_TRUE(listing.Refresh("C:\\sub\\\\*"));
  ASSERT_EQ(listing.Folders().size(), 1U);
  EXPECT_EQ(listing.Folders()[0].FileName, "...");
  EXPECT_TRUE(listing.Files().empty());
  ASSERT_TRUE(files_.rename("C:\\a.txt", "C:\\a.txt.TGZ"));
  ASSERT_EQ(truncate(host("a.txt.TGZ").c_str(), 5'000'000'000), 0);
  EXPECT_TRUE(listing.Refresh("C:\\*"));
  EXPECT_EQ(listing.Folders().size(), 2U);  // sub and the link to it
  const auto& found = listing.Files();
  const auto file = std::find_if(found.begin(), found.end(), [](auto& f) { return f.FileExt == "tgz"; });
  ASSERT_NE(file, found.end());
  EXPECT_EQ(file->FileSize, 5'000'000'000);
  const auto dangling =
      std::find_if(found.begin(), found.end(), [](auto& f) { return f.FileName == "dangling"; });
  ASSERT_NE(dangling, found.end());
  EXPECT_EQ(dangling->FileExt, "");
  EXPECT_EQ(dangling->FileSize, 7);
}

TEST_F(FilesTest, AttributesComeFromNameModeAndNote) {
  const auto attributes = [this](const std::string& name) {
    FileClass listing(drives_);
    listing.Refresh("C:\\*");
    for (const InfoClass& info : listing.Files()) {
      if (info.FileName == name) return info.FileAttr;
    }
    return ~0U;
  };
  EXPECT_EQ(attributes("a.txt"), 0U);
  chmod(host("a.txt").c_str(), 0444);
  EXPECT_EQ(attributes("a.txt"), platform::attributeReadOnly);
  ASSERT_TRUE(files_.rename("C:\\a.txt", "C:\\.a"));
  EXPECT_EQ(attributes(".a"), platform::attributeReadOnly | platform::attributeHidden);
  ASSERT_TRUE(files_.writeText("C:\\noted", ""));
  const std::string note("0x16\0rest", 9);
  if (setxattr(host("noted").c_str(), "user.DOSATTRIB", note.data(), note.size(), 0) != 0)
    GTEST_SKIP() << "no user attributes on this file system";
  EXPECT_EQ(attributes("noted"), platform::attributeHidden | platform::attributeSystem);
}
