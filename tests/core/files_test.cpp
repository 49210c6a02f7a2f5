#include "platform/Files.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/xattr.h>

#include <memory>

#include "platform/CopyAttributes.h"
#include "platform/DirectorySearch.h"
#include "runtime/FileClass.h"
#include "tests/OnDisk.h"

namespace fs = std::filesystem;
using platform::DriveTable;
using platform::Files;
using runtime::FileClass;
using tests::giveTo;
using tests::modeOf;

namespace {

class FilesTest : public testworld::World {
 protected:
  FilesTest() {
    write("a.txt");
    fs::create_directory(host("sub"));
    fs::create_symlink("sub", host("toSub"));
    fs::create_symlink("nothing", host("dangling"));
    mkfifo(host("fifo").c_str(), 0600);
  }
  std::ptrdiff_t count() const { return std::distance(fs::directory_iterator(host("")), {}); }
  std::optional<std::string> read(const std::string& name) { return files_.readBytes("C:\\" + name, 9); }
};

}  // namespace

TEST_F(FilesTest, KindsFollowLinksAndNamesAreExact) {
  EXPECT_TRUE(files_.fileExists("C:\\a.txt") && files_.fileExists("C:\\fifo"));
  EXPECT_FALSE(files_.fileExists("C:\\toSub") || files_.fileExists("C:\\dangling"));
  EXPECT_TRUE(files_.folderExists("C:\\toSub"));
  EXPECT_TRUE(files_.entryExists("C:\\dangling"));
  EXPECT_FALSE(files_.entryExists("\\\\server\\share"));
  EXPECT_EQ(files_.fileSize("C:\\a.txt"), 4U);
  EXPECT_EQ(files_.fileSize("C:\\sub"), std::nullopt);
  EXPECT_EQ(files_.fullName("C:\\a.txt"), "a.txt");
  for (const char* path : {"C:\\A.txt", "C:\\", "C:\\sub\\..", "C:\\a.txt\\x"})
    EXPECT_EQ(files_.fullName(path), "") << path;
  EXPECT_EQ(files_.fullName("Z:" + root_ + "/disk"), "disk");  // the folder of C:
  EXPECT_EQ(platform::longName(files_, "C:\\gone"), "");
  EXPECT_EQ(platform::extensionOf("C:\\a.b\\name"), "");
  EXPECT_EQ(platform::extensionOf("x.tar.GZ"), "GZ");
}

TEST_F(FilesTest, EntriesAreHeldAndSorted) {
  write("a\\\xFF", "");
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
  ASSERT_EQ(files_.copyFile("C:\\a.txt", "C:\\link"), 0);
  EXPECT_EQ(read("link"), "text");
  EXPECT_EQ(files_.readBytes("C:\\victim", 3), "kee");
  EXPECT_EQ(modeOf(host("link")), 04751U);
  EXPECT_EQ(files_.copyFile("C:\\fifo", "C:\\new"), EINVAL);
  for (const char* taken : {"C:\\sub", "C:\\fifo"})
    EXPECT_EQ(files_.copyFile("C:\\a.txt", taken), EINVAL) << taken;
  EXPECT_EQ(read("fifo"), std::nullopt);
}

TEST_F(FilesTest, AFullFileSystemIsKnownBeforehand) {
  EXPECT_EQ(files_.writeProblem("C:\\sub"), 0);
  enum { known, missed, noMount };
  const int found = tests::inChild([this] {
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", host("sub").c_str(), "tmpfs", 0, "size=16k") != 0)
      return noMount;
    const bool room = files_.writeProblem("C:\\sub") == 0;
    std::ofstream(host("sub/big")) << std::string(100000, 'x');
    return room && files_.writeProblem("C:\\sub") == ENOSPC ? known : missed;
  });
  if (found == noMount) GTEST_SKIP() << "no file system of its own";
  EXPECT_EQ(found, known);
}

/// Every file system, whatever it can, ends alike: moved, or what stood there is spared.
TEST_F(FilesTest, AMoveSparesWhatNobodyAgreedToReplace) {
  const auto unable = [](const char*, const char*) { return errno = EINVAL, -1; };
  const auto noLinks = [](const char*, const char*) { return errno = EPERM, -1; };
  const platform::MoveCalls& system = platform::systemMoveCalls;
  for (const platform::MoveCalls& calls : {system, {unable, system.linkTo}, {unable, noLinks}}) {
    ASSERT_TRUE(files_.writeText("C:\\new", "new"));
    for (const char* taken : {"a.txt", "dangling", "sub"})
      EXPECT_EQ(moveUnlessTaken(host("new"), host(taken), calls), EEXIST) << taken;
    EXPECT_EQ(read("a.txt"), "text");
    EXPECT_EQ(moveUnlessTaken(host("new"), host("moved"), calls), 0);
    EXPECT_EQ(read("moved"), "new");
    EXPECT_FALSE(files_.entryExists("C:\\new"));
    EXPECT_EQ(files_.moveFile("C:\\moved", "C:\\a.txt", platform::Existing::Spared), EEXIST);
    EXPECT_EQ(files_.moveFile("C:\\moved", "C:\\gone\\x", platform::Existing::Spared), ENOENT);
    EXPECT_EQ(files_.moveFile("C:\\moved", "C:\\other", platform::Existing::Replaced), 0);
  }
}

TEST_F(FilesTest, AMoveToAnotherFileSystemKeepsModeAndOwnerAndSpares) {
  const std::string far = "/dev/shm/files-test-" + std::to_string(getpid());
  const DriveTable drives({{'C', host("")}, {'M', far}});
  const Files files(drives);
  std::error_code failed;
  fs::create_directory(far, failed);
  const auto cleanUp = std::shared_ptr<void>(nullptr, [&far](void*) { fs::remove_all(far); });
  ASSERT_TRUE(giveTo(host("a.txt"), 65534, 65533));
  chmod(host("a.txt").c_str(), 04640);
  if (failed || tests::statusOf(root_).st_dev == tests::statusOf(far).st_dev)
    GTEST_SKIP() << "no second file system";
  std::ofstream(far + "/taken") << "theirs";
  std::stop_source stopped;
  stopped.request_stop();
  using platform::Existing;
  EXPECT_EQ(files.moveFile("C:\\a.txt", "M:\\x", Existing::Spared, platform::Stop(stopped.get_token())),
            ECANCELED);
  EXPECT_EQ(files.moveFile("C:\\a.txt", "M:\\taken", Existing::Spared), EEXIST);
  EXPECT_EQ(tests::bytesOf(far + "/taken"), "theirs");
  EXPECT_EQ(std::distance(fs::directory_iterator(far), fs::directory_iterator()), 1);
  ASSERT_EQ(mkfifo(host("pipe").c_str(), 0600), 0);
  EXPECT_EQ(files.moveFile("C:\\pipe", "M:\\" + std::string(300, 'x'), Existing::Replaced), EINVAL);
  EXPECT_EQ(files.moveFile("C:\\a.txt", "M:\\taken", Existing::Replaced), 0);
  EXPECT_FALSE(files.entryExists("C:\\a.txt"));
  EXPECT_EQ(tests::bytesOf(far + "/taken"), "text");
  EXPECT_EQ(modeOf(far + "/taken"), 04640U);
  EXPECT_TRUE(tests::belongsTo(far + "/taken", 65534, 65533));
}

/// Bits that lend the owner's rights stay behind when the owner does.
TEST_F(FilesTest, NoOwnersRightsPassToAnother) {
  if (geteuid() != 0 || !tests::ordinaryUserGetsAbout()) GTEST_SKIP() << "takes two users";
  chmod(host("a.txt").c_str(), 06755);
  for (const std::string& open : {root_, host("")}) chmod(open.c_str(), 0777);
  EXPECT_TRUE(tests::asOrdinaryUser([this] {
    return files_.writeText("C:\\mine", "x") && files_.copyFile("C:\\a.txt", "C:\\copy") == 0 &&
           platform::copyModeAndOwner(drives_, "C:\\a.txt", "C:\\mine");
  }));
  for (const char* name : {"mine", "copy"}) EXPECT_EQ(modeOf(host(name)), 0755U) << name;
}

TEST_F(FilesTest, AFailedWriteLeavesWhatWasThereAndAGoodOneItsMode) {
  chmod(host("a.txt").c_str(), 0640);
  ASSERT_TRUE(files_.writeText("C:\\big", std::string(300000, 'x')));
  const auto before = count();
  {
    const tests::FullDisk full(100000);
    EXPECT_EQ(files_.copyFile("C:\\big", "C:\\a.txt"), EFBIG);
    EXPECT_FALSE(files_.writeText("C:\\a.txt", std::string(200000, 'y')));
  }
  EXPECT_EQ(read("a.txt"), "text");
  EXPECT_EQ(count(), before);
  ASSERT_TRUE(files_.writeText("C:\\a.txt", "new"));
  EXPECT_EQ(modeOf(host("a.txt")), 0640U);
}

TEST_F(FilesTest, FoldersAreMadeOneLevel) {
  EXPECT_EQ(files_.createFolder("C:\\sub"), 0);
  EXPECT_EQ(files_.createFolder("C:\\a.txt"), EEXIST);
  EXPECT_EQ(files_.createFolder("C:\\x\\y"), ENOENT);
  EXPECT_EQ(files_.createFolderExclusively("C:\\sub"), EEXIST);
  EXPECT_EQ(files_.createFolderExclusively("C:\\own"), 0);
  EXPECT_EQ(modeOf(host("own")), 0700U);
}

TEST_F(FilesTest, DeleteTreeStaysInsideAndOpensFolders) {
  for (const char* path : {"C:\\", "C:\\.", "C:\\sub\\..", "C:\\sub\\..\\", "sub", "", "C:\\tree"})
    EXPECT_FALSE(files_.deleteTree(path)) << path;
  ASSERT_TRUE(files_.writeText("C:\\sub\\keep", "k"));
  EXPECT_TRUE(files_.deleteTree("C:\\toSub"));
  EXPECT_TRUE(files_.fileExists("C:\\sub\\keep"));
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  fs::create_directories(host("tree/closed/in"));
  fs::create_symlink("../../sub", host("tree/closed/out"));
  chmod(root_.c_str(), 0755);
  chmod(host("tree/closed/in").c_str(), 0);
  for (const char* name : {"tree/closed", "tree"}) chmod(host(name).c_str(), 0500);
  for (const char* name : {"", "tree", "tree/closed", "tree/closed/in"})
    ASSERT_TRUE(giveTo(host(name), 65534, 65534));
  EXPECT_TRUE(tests::asOrdinaryUser([this] { return files_.deleteTree("C:\\tree"); }));
  EXPECT_FALSE(files_.entryExists("C:\\tree"));
  EXPECT_TRUE(files_.fileExists("C:\\sub\\keep"));
}

TEST_F(FilesTest, DeleteTreeGoesDeeperThanDescriptorsAndPathsReach) {
  int here = open(host("").c_str(), O_DIRECTORY | O_CLOEXEC);
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
  for (const char* none : {"C:\\sub\\*", "C:\\gone\\*"}) EXPECT_FALSE(listing.Refresh(none)) << none;
  fs::create_directories(host("sub/..."));
  EXPECT_TRUE(listing.Refresh("C:\\sub\\\\*"));
  ASSERT_EQ(listing.Folders().size(), 1U);
  EXPECT_EQ(listing.Folders()[0].FileName, "...");
  EXPECT_TRUE(listing.Files().empty());
  ASSERT_TRUE(files_.rename("C:\\a.txt", "C:\\a.txt.TGZ"));
  ASSERT_EQ(truncate(host("a.txt.TGZ").c_str(), 5'000'000'000), 0);
  EXPECT_TRUE(listing.Refresh("C:\\*"));
  EXPECT_EQ(listing.Folders().size(), 2U);  // sub and the link to it
  std::map<std::string, std::pair<std::string, std::int64_t>> found;
  for (const auto& info : listing.Files()) found[info.FileName] = {info.FileExt, info.FileSize};
  EXPECT_EQ(found["a.txt.TGZ"], std::pair(std::string("tgz"), std::int64_t{5'000'000'000}));
  EXPECT_EQ(found["dangling"], std::pair(std::string(), std::int64_t{7}));
}

TEST_F(FilesTest, LargeFoldersAreToldWholeAndInTheSystemsOrder) {
  fs::create_directory(host("many"));
  std::map<std::string, std::int64_t> sizes;
  for (int i = 0; i < 17'500; ++i) {
    const std::string name = std::to_string(i);
    std::ofstream(host("many/" + name)) << std::string(static_cast<std::size_t>(i % 7), 'x');
    sizes[name] = i % 7;
  }
  std::vector<std::string> order;
  for (const auto& entry : fs::directory_iterator(host("many"))) order.push_back(entry.path().filename());
  FileClass listing(drives_);
  EXPECT_TRUE(listing.Refresh("C:\\many\\*"));
  EXPECT_TRUE(listing.Folders().empty());
  std::vector<std::string> told;
  for (const auto& info : listing.Files()) {
    told.push_back(info.FileName);
    ASSERT_EQ(info.FileSize, sizes[info.FileName]) << info.FileName;
    ASSERT_TRUE(info.ModifyDate) << info.FileName;
  }
  EXPECT_EQ(told, order);
}

TEST_F(FilesTest, AttributesComeFromNameModeAndNote) {
  const auto attributes = [this](const std::string& name) {
    FileClass listing(drives_);
    listing.Refresh("C:\\*");
    for (const auto& info : listing.Files())
      if (info.FileName == name) return info.FileAttr;
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
