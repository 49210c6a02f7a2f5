#include <gtest/gtest.h>

#include <list>
#include <random>

#include "archive/ArchiveTreeBuilder.h"
#include "archive/ExtractCommand.h"
#include "archive/ExtractGuard.h"
#include "archive/ListingLine.h"
#include "archive/ListingOutput.h"
#include "archive/SiblingOrder.h"
#include "runtime/EscapeQuoting.h"
#include "tests/OnDisk.h"

namespace {

using namespace archive;
using runtime::ArchiveKind;

ArchiveTree treeOf(const std::string& listing, ArchiveKind kind = ArchiveKind::Gzip) {
  ArchiveTreeBuilder builder(kind, listing, [] { return std::string("12\n34\n"); });
  while (builder.addNextLine()) {
  }
  return builder.finish();
}

/// A listing line of a regular file, or of a folder for a path that ends in "/".
std::string line(const std::string& path, char kind = 0) {
  if (kind == 0) kind = path.ends_with('/') ? 'd' : '-';
  return std::string(1, kind) + "rwxr-xr-x 507/1              12 2006-05-04 13:22 " + path + "\n";
}

// What GNU tar 1.34 printed with LC_ALL=C.UTF-8, and with gzip 1.12, bzip2 1.0.8 and GNU ar 2.40 behind it.
constexpr const char* recordedListing =
    R"(drwxr-xr-x 507/Domain Users  0 2006-05-04 13:22 usr/
-rw-r--r-- 507/Domain Users  2 2006-05-04 13:22 usr/a b\nc\\d\377
drwxr-xr-x 507/Domain Users  0 2006-05-04 13:22 usr/bin/
-rw-r--r-- 507/Domain Users  1 2006-05-04 13:22 usr/bin/app
hrw-r--r-- 507/Domain Users  0 2006-05-04 13:22 usr/hard link to usr/bin/app
lrwxrwxrwx 507/Domain Users  0 2006-05-04 13:22 usr/ln -> ../lib/x.so
crw-r--r-- 507/Domain Users 1,3 2006-05-04 13:22 usr/null
)";
constexpr const char* cutGzip = R"(
gzip: stdin: unexpected end of file
tar: Unexpected EOF in archive
tar: Error is not recoverable: exiting now
)";
constexpr const char* noGzip = R"(
gzip: stdin: not in gzip format
tar: Child returned status 1
tar: Error is not recoverable: exiting now
)";
constexpr const char* childFailed =
    "tar: Child returned status 2\ntar: Error is not recoverable: exiting now\n";
constexpr const char* cutBzip2 = R"(
bzip2: Compressed file ends unexpectedly;
	perhaps it is corrupted?  *Possible* reason follows.
bzip2: Inappropriate ioctl for device
	Input file = (stdin), output file = (stdout)

It is possible that the compressed file(s) have become corrupted.
You can use the -tvv option to test integrity of such files.

You can use the `bzip2recover' program to attempt to recover
data from undamaged sections of corrupted files.

)";

/// Each node on a line of its own, indented, in sibling order.
std::string outline(const ArchiveTree& tree, NodeId parent = 0, int depth = 0) {
  std::string text;
  for (std::size_t i = 0; i < tree.childCount(parent); ++i) {
    const NodeId node = tree.child(parent, i);
    EXPECT_EQ(tree.row(node), i);
    EXPECT_EQ(tree.parent(node), parent);
    text += std::string(static_cast<std::size_t>(depth), ' ') + tree.text(node) + '\n';
    text += outline(tree, node, depth + 1);
  }
  return text;
}

TEST(ListingLine, FieldsAreFoundFromDateAndTime) {
  const auto fields = [](const char* line) {
    std::string text;
    const auto entry = parseListingLine(line);
    if (!entry) return text;
    for (const auto& field : {entry->mode, entry->owner, entry->size, entry->dateTime, entry->path})
      (text += field) += '|';
    return text;
  };
  EXPECT_EQ(fields("drwxr-xr-x Domain Users/my group     0 2006-05-04 13:22  lead 2001-01-01 00:00 x/"),
            "drwxr-xr-x|Domain Users/my group|0|2006-05-04 13:22| lead 2001-01-01 00:00 x/|");
  EXPECT_EQ(fields("crw-rw-rw- root/root       1,3 292277-12-04 15:30:08.123456789 dev/null"),
            "crw-rw-rw-|root/root|1,3|292277-12-04 15:30:08.123456789|dev/null|");
  EXPECT_EQ(fields("-rw-r--r-- a/b   7  May 4   name x"), "-rw-r--r--|a/b|7|May 4|name x|");
  for (const char* bad : {"", "tar: Ignoring unknown extended header keyword 'A.b'", "-rw-r--r--",
                          "V--------- 0/0 0 1970-01-01 00:00 label--Volume Header--"})
    EXPECT_FALSE(parseListingLine(bad)) << bad;
}

TEST(ListingLine, EscapesAreTurnedBack) {
  EXPECT_EQ(runtime::unescaped("a\\nb\\\\c\\td\\377\\001\\q\\"), "a\nb\\c\td\377\001\\q\\");
  EXPECT_EQ(platform::releaseName(heldName("caf\\303\\251:\\b")), "caf\303\251:\b");
}

TEST(ListingOutput, MessagesNameTheReason) {
  const std::string tar = "An error occurred when attempting to open tar package:\r\nC:\\x\r\n\r\n";
  const platform::DriveTable drives({{'C', "/nowhere"}});
  const platform::Files files(drives);
  const auto problem = [&files](const std::string& output, int status = 0) {
    return listingProblem({output, status}, ArchiveKind::Gzip, "C:\\x", files);
  };
  for (const std::string bzip2 : {cutBzip2, "bzip2: (stdin) is not a bzip2 file.\n"})
    EXPECT_EQ(problem(bzip2 + childFailed), tar + childFailed);
  std::string flood;
  while (flood.size() < 10000) flood += line("member");
  EXPECT_EQ(problem(flood + "gzip: stdin: crc error\n"), tar + "gzip: stdin: crc error\n");
  EXPECT_FALSE(problem(line("tar: gzip: ar: x")));
  const std::string harmless = "tar: Ignoring unknown extended header keyword 'SCHILY.dev'\n" + line("a");
  EXPECT_FALSE(problem(harmless));
  EXPECT_EQ(problem(harmless, 137), tar + "tar was ended by signal 9");
  EXPECT_EQ(problem("", 2), tar + "tar ended with exit code 2");
  EXPECT_EQ(problem("tar: x\n", 2), tar + "tar: x\n");
  EXPECT_EQ(listingProblem({runtime::startFailure, -1, 2}, ArchiveKind::Ipk, "C:\\x", files),
            "An error occurred when attempting to open package:\r\nC:\\x\r\n\r\n"
            "ar could not be started: No such file or directory");
}

TEST(ListingOutput, RecordedRemarksAreNoNames) {
  for (const char* said : {cutGzip, noGzip, childFailed, cutBzip2})
    for (const std::string_view line : completeLines(said))
      EXPECT_TRUE(line.empty() || isRemark(line)) << line;
  std::string members;
  for (const GuardedMember& member : membersOf(std::string(recordedListing) + cutGzip))
    members += platform::releaseName(member.name) + member.type + member.target + ' ';
  EXPECT_EQ(
      members,
      "usr/d usr/a b\nc\\d\377- usr/bin/d usr/bin/app- usr/hardhusr/bin/app usr/lnl../lib/x.so usr/nullc ");
}

TEST(ArchiveTree, ARecordedListingBecomesATree) {
  const ArchiveTree tree = treeOf(recordedListing);
  EXPECT_EQ(platform::releaseName(outline(tree)), "usr\n bin\n  app\n a b\nc\\d\377\n hard\n ln\n null\n");
  EXPECT_EQ(tree.tag(7),
            "Size:                 1,3 bytes\rModified:          2006-05-04 13:22\r"
            "Permissions:     crw-r--r--\rOwner/Group:  507/Domain Users");
  EXPECT_TRUE(tree.tag(6).ends_with("\rShortcut:          ../lib/x.so"));
  EXPECT_EQ(tree.entry(4)->size, "1");
}

TEST(ArchiveTree, ComponentsBecomeNodes) {
  for (const auto& [listing, tree] :
       {std::pair(line("./") + line("./usr/") + line("./usr/bin/") + line("./usr/bin/app"),
                  "./usr\n bin\n  app\n"),
        {line("usr/bin/app"), "usr\n bin\n  app\n"},
        {line("../../a/./b//c"), "../../a\n ./b\n  \n   c\n"},
        {line("/etc/x"), "\n etc\n  x\n"},
        {line("b.txt") + line("Beta/x") + line("alpha/x") + line("A"), "alpha\n x\nBeta\n x\nA\nb.txt\n"},
        {"no line end", ""}})
    EXPECT_EQ(outline(treeOf(listing)), tree);
  std::string deep;  // many nodes from one line
  for (int i = 0; i < 40; ++i) deep += "folder/";
  EXPECT_EQ(treeOf(line(deep) + line(deep + "file")).nodeCount(), 41U);
}

TEST(ArchiveTree, NodesKeepWhatTheLineSays) {
  const ArchiveTree tree = treeOf(line("lib/a.so -> b -> c", 'l') + line("top -> b", 'l') +
                                  "tar: Removing leading `/'\n" + line("x.tgz") + line("h link to text/y"));
  enum : NodeId { lib = 1, so };
  const std::string properties =
      "Size:                 12 bytes\rModified:          2006-05-04 13:22\r"
      "Permissions:     lrwxr-xr-x\rOwner/Group:  507/1";
  EXPECT_EQ(platform::releaseName(tree.tag(so)), properties + "\rShortcut:          b -> c");
  EXPECT_EQ(tree.tag(lib), tree.tag(so));
  EXPECT_EQ(tree.image(lib), 1);
  EXPECT_EQ(tree.image(so), 21);
  EXPECT_EQ(tree.memberPath(so), "lib/a.so");
  EXPECT_EQ(platform::releaseName(tree.text(3)), "top -> b");
  EXPECT_EQ(tree.memberPath(3), "top");
  EXPECT_EQ(tree.tag(3), properties);
  EXPECT_EQ(tree.image(4), 5);
  EXPECT_EQ(platform::releaseName(tree.text(5)), "h link to text");
  const ArchiveTree ipk = treeOf("debian-binary\npackageSize\n", ArchiveKind::Ipk);
  EXPECT_EQ(ipk.tag(1), "");
  EXPECT_EQ(ipk.tag(2), "Package Size: 1234 bytes");
}

/// The order by the plain walk over the siblings.
class PlainWalk {
 public:
  void add(const std::string& path) {
    Node* parent = &root_;
    std::istringstream parts(path);
    for (std::string text; std::getline(parts, text, '/');) {
      const bool isFolder = !parts.eof();
      auto found = parent->children.end();
      if (path.find('/') != path.npos)
        found = std::find_if(parent->children.begin(), found,
                             [&](const Node& node) { return node.text == text; });
      parent = found != parent->children.end() ? &*found : insert(*parent, text, isFolder);
    }
  }
  std::string outline() const { return outline(root_, 0); }

 private:
  struct Node {
    std::string text;
    std::list<Node> children;
  };
  static Node* insert(Node& parent, const std::string& text, bool isFolder) {
    auto at = parent.children.begin();
    for (; at != parent.children.end(); ++at) {
      const bool leaf = at->children.empty();
      const bool less = sortsBefore(text, at->text);
      if (isFolder ? leaf || less : leaf && less) break;
    }
    return &*parent.children.insert(at, {text, {}});
  }
  static std::string outline(const Node& node, int depth) {
    std::string text;
    for (const Node& child : node.children)
      text +=
          std::string(static_cast<std::size_t>(depth), ' ') + child.text + '\n' + outline(child, depth + 1);
    return text;
  }
  Node root_;
};

TEST(ArchiveTree, OrderIsThatOfThePlainWalk) {
  std::mt19937 random(7);
  const std::vector<std::string> names = {"a",  "B", "b",  "C", "dd",       "D",        "e1",
                                          "E2", "f", "Gg", "h", "\xC3\x84", "\xC3\xA4x"};
  const auto pick = [&](std::size_t count) { return random() % count; };
  for (int round = 0; round < 60; ++round) {
    PlainWalk walk;
    std::string listing;
    const std::size_t known = 2 + pick(names.size() - 1);
    for (std::size_t i = 0; i < 150; ++i) {
      std::string path = names[pick(known)] + std::to_string(pick(8));
      for (std::size_t depth = pick(4); depth > 0; --depth) path += '/' + names[pick(known)];
      if (pick(3) == 0) path += '/';
      walk.add(path);
      listing += line(path);
    }
    ASSERT_EQ(outline(treeOf(listing)), walk.outline()) << "round " << round;
  }
}

TEST(ArchiveTree, ChecksFollowFoldersAndMarkTheOnesAbove) {
  ArchiveTree tree = treeOf(line("./usr/bin/app") + line("./usr/bin/tool") + line("./usr/lib") + line("top"));
  enum : NodeId { usr = 1, bin, app, tool, lib, top };
  const auto members = [&](bool all) {
    std::string text;
    for (const Contribution& one : contributions(tree, all)) text += memberList(one.members);
    return text;
  };
  EXPECT_EQ(members(false), "\"./usr\" \"top\" ");
  tree.setChecked(tool, false);
  EXPECT_FALSE(tree.checked(bin) || tree.checked(usr));
  EXPECT_TRUE(tree.partlySelected(bin) && tree.partlySelected(usr));
  EXPECT_EQ(members(false), "\"./usr/bin/app\" \"./usr/lib\" \"top\" ");
  EXPECT_EQ(members(true), "\"./usr\" \"top\" ");
  tree.setChecked(usr, true);
  EXPECT_FALSE(tree.partlySelected(usr) || tree.partlySelected(bin));
  EXPECT_TRUE(tree.checked(tool));
  tree.setAllChecked(false);
  EXPECT_EQ(members(false), "");
  tree.setChecked(app, true);
  EXPECT_TRUE(tree.partlySelected(bin) && !tree.checked(bin));  // a folder is never checked by what it holds
  EXPECT_EQ(members(false), "\"./usr/bin/app\" ");
  tree.setAllChecked(true);
  EXPECT_FALSE(tree.partlySelected(usr));
  EXPECT_EQ(memberList(contributions(treeOf(line("/etc/x") + line("/usr")), true).front().members),
            "\"/etc\" \"/usr\" ");
}

TEST(ExtractCommand, TextsAsTheToolsGetThem) {
  EXPECT_EQ(listCommand(ArchiveKind::Gzip, "C:\\a b.tgz"), "tar.exe -i -Ptzvf \"/cygdrive/C/a b.tgz\"");
  EXPECT_EQ(listCommand(ArchiveKind::Tar, "C:\\a.tar"), "tar.exe -i -Ptvf \"/cygdrive/C/a.tar\"");
  EXPECT_EQ(namesCommand(ArchiveKind::Bzip2, "C:\\a.tbz"), "tar.exe -i -tjf \"/cygdrive/C/a.tbz\"");
  EXPECT_EQ(namesCommand(ArchiveKind::Ipk, "C:\\a.ipk"), "ar -t \"/cygdrive/C/a.ipk\"");
  EXPECT_EQ(tarExtractCommand(ArchiveKind::Gzip, "C:\\a.tgz", "C:\\a\\", "\"x\" "),
            "tar.exe -i -C \"/cygdrive/C/a/\" -zxv --preserve-permissions -f \"/cygdrive/C/a.tgz\" \"x\" ");
  EXPECT_EQ(arExtractCommand("C:\\a.ipk", {"x"}), "ar.exe -x \"/cygdrive/C/a.ipk\" \"x\" ");
  EXPECT_EQ(proposedOutFolder("C:\\pkg\\app.tgz"), "C:\\pkg\\app\\");
}

}  // namespace
