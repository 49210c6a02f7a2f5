#include "shell/CommandLine.h"

#include <gtest/gtest.h>

#include "platform/HeldName.h"

using shell::CommandLine;
using shell::Form;
using shell::HostArguments;
using Texts = std::vector<std::string>;

namespace {

const platform::DriveTable drives({{'C', "/home/u"}, {'D', "/mnt/d"}});

HostArguments read(const Texts& arguments) {
  const auto translate = [](std::string_view text) { return platform::typedPath(drives, text, "C:\\here"); };
  return shell::readArguments(arguments, translate, platform::holdName);
}

CommandLine parsed(const Texts& arguments) { return shell::parseCommandLine(read(arguments).text); }

}  // namespace

TEST(CommandLine, SwitchesAreLeadingCharactersInTheirOrder) {
  using Case = std::pair<const char*, Form>;
  for (const auto& [text, form] :
       {Case{"", Form::Normal}, Case{"-d", Form::Folder}, Case{"-dopen", Form::Folder},
        Case{"-open", Form::Open}, Case{"-extracted", Form::Extract}, Case{"-pack", Form::Pack},
        Case{"-qpack", Form::QuickPack}, Case{"-perms", Form::Permissions}, Case{"-D", Form::Paths},
        Case{"-PACK", Form::Paths}, Case{" -pack", Form::Paths}, Case{"-q", Form::Paths}})
    EXPECT_EQ(shell::parseCommandLine(text).form, form) << text;
}

TEST(CommandLine, TheFolderIsQuotedOrTheSecondWord) {
  using Folder = std::optional<std::string>;
  using Pair = std::pair<std::string, Folder>;
  for (const auto& [text, folder] :
       {Pair{"-d", std::nullopt}, Pair{"-dfoo", std::nullopt}, Pair{"-d C:\\a b", "C:\\a"},
        Pair{"-d  C:\\a", ""}, Pair{"-d \"C:\\a b\" c", "C:\\a b"}, Pair{"-d\"C:\\a\"", "C:\\a"},
        Pair{"-d \"C:\\open", "C:\\open"}, Pair{"-d \"\"", ""}})
    EXPECT_EQ(shell::parseCommandLine(text).folder, folder) << text;
}

TEST(CommandLine, RecordsAreCutAtCrLfOnly) {
  const CommandLine line = shell::parseCommandLine("-pack\r\nC:\\p\r\n\"a b\"\r\nc\nd\re\r\n");
  EXPECT_EQ(line.fields, (Texts{"-pack", "C:\\p", "\"a b\"", "c\nd\re", ""}));
  EXPECT_TRUE(line.complete);
  for (const char* form : {"-open", "-pack", "-qpack", "-perms"}) {
    EXPECT_FALSE(shell::parseCommandLine(form + std::string("\r\nC:\\p")).complete) << form;
    EXPECT_TRUE(shell::parseCommandLine(form + std::string("\r\nC:\\p\r\na")).complete) << form;
  }
  EXPECT_FALSE(shell::parseCommandLine("-extract\r\nC:\\p\r\na.tgz").complete);
  EXPECT_TRUE(shell::parseCommandLine("-extract\r\nC:\\p\r\na.tgz\r\nC:\\o").complete);
}

TEST(CommandLine, PathListsAreCutBetweenQuotes) {
  EXPECT_EQ(shell::parseCommandLine("\"C:\\a b\" \"C:\\c\"").fields, (Texts{"C:\\a b", "C:\\c"}));
  EXPECT_EQ(shell::parseCommandLine("C:\\a b").fields, Texts{"C:\\a b"});
  EXPECT_EQ(shell::parseCommandLine("\"C:\\a\"  \"C:\\c\"").fields, Texts{"C:\\a  C:\\c"});
}

TEST(Arguments, OurOptionsStandBeforeTheSwitchOnly) {
  const HostArguments some = read({"--yes", "--batch", "-qpack", "/home/u/p", "--help"});
  EXPECT_TRUE(some.yes && some.batch);
  EXPECT_FALSE(some.help || some.version);
  EXPECT_EQ(some.text, "-qpack\r\nC:\\p\r\n--help");
  EXPECT_TRUE(read({"--version"}).version);
  EXPECT_TRUE(read({"--help", "x"}).help);
  EXPECT_EQ(read({"--yes", "--bach", "-qpack", "p"}).unknown, "--bach");
  EXPECT_EQ(read({"--yes", "-qpack", "p"}).unknown, "");
  EXPECT_EQ(read({}).text, "");
  EXPECT_EQ(read({""}).text, "");
}

TEST(Arguments, PackOptionsChangeTheSettingsOrSayWhyNot) {
  const auto applied = [](const std::vector<std::string>& options, const std::string& epoch = "") {
    std::vector<std::string> arguments = options;
    arguments.insert(arguments.end(), {"-qpack", "p", "x"});
    const shell::HostArguments parsed = read(arguments);
    EXPECT_EQ(parsed.pack.any(), !options.empty());
    archive::PackSettings settings;
    const std::string problem = applyOptions(parsed.pack, epoch, settings);
    return problem.empty() ? ownerOptions(settings) + memberOptions(settings) + settings.outputPath : problem;
  };
  const std::string usual = "--owner=500 --group=1 ";
  using Case = std::pair<std::vector<std::string>, std::string>;
  for (const auto& [options, result] :
       {Case{{}, usual}, Case{{"--yes", "--output", "o.tgz"}, usual + read({"o.tgz"}).text},
        Case{{"--owner", "usr8", "--group", "33"}, "--owner=507 --group=33 "},
        Case{{"--owner=0", "--group=keep"}, "--owner=0 "}, Case{{"--owner", "keep"}, "--group=1 "},
        Case{{"--time", "12", "--umask", "0"}, usual + "--mtime=@12 "},
        Case{{"--umask=0752"}, usual + "--mode=u-rwx,g-rx,o-w "},
        Case{{"--umask", "788"}, "--umask cannot be '788': an octal number up to 777"},
        Case{{"--umask", "1000"}, "--umask cannot be '1000': an octal number up to 777"},
        Case{{"--time", "-1"}, "--time cannot be '-1': seconds since 1970"},
        Case{{"--time", "99999999999"}, "--time cannot be '99999999999': seconds since 1970"},
        Case{{"--group", "usr1"}, "--group cannot be 'usr1': a number, or keep"},
        Case{{"--owner", "7x"}, "--owner cannot be '7x': an account of the terminal, a number, or keep"},
        Case{{"--output="}, "--output needs a path"}})
    EXPECT_EQ(applied(options), result);
  EXPECT_EQ(applied({}, "77"), usual + "--mtime=@77 ");
  EXPECT_EQ(applied({"--time", "12"}, "bad"), usual + "--mtime=@12 ");
  EXPECT_EQ(applied({}, "bad"), "SOURCE_DATE_EPOCH cannot be 'bad': seconds since 1970");
  EXPECT_EQ(read({"--owner"}).pack.owner, "");
}

TEST(Arguments, OneArgumentAFieldAndOneForAllGiveTheSameRecord) {
  const Texts fields = {"-extract", "C:\\here\\p", "b c.tgz", "D:\\out dir"};
  EXPECT_EQ(parsed({"-extract", "p", "b c.tgz", "/mnt/d/out dir"}).fields, fields);
  EXPECT_EQ(parsed({"-extract\r\np\r\nb c.tgz\r\n/mnt/d/out dir"}).fields, fields);
  // Only -extract has a second folder; elsewhere the third field is a name.
  EXPECT_EQ(parsed({"-open", ".", "/mnt/d/x"}).fields, (Texts{"-open", "C:\\here", "/mnt/d/x"}));
  EXPECT_EQ(parsed({"-perms", ".", "a", "b"}).fields, (Texts{"-perms", "C:\\here", "a", "b"}));
  EXPECT_EQ(parsed({"-pack", "", "a"}).fields, (Texts{"-pack", "", "a"}));
}

TEST(Arguments, NoNameOrFolderCutsARecord) {
  const std::string name = "a\r\n\"b\":c";
  const CommandLine line = parsed({"-pack", "./x\r\ny", name, "C:\\p", "d\xFF"});
  EXPECT_EQ(line.fields,
            (Texts{"-pack", "C:\\here\\" + platform::holdName("x\r\ny"), platform::holdName(name),
                   platform::holdName("C:\\p"), platform::holdName("d\xFF")}));
  EXPECT_EQ(parsed({"-pack", "C:/x\r\ny", "a"}).fields[1], "C:\\x" + platform::holdName("\r\n") + "y");
  const HostArguments nowhere = read({"-extract", "Q:\\x\r\ny", "a.tgz", "\\\\server\\share"});
  EXPECT_EQ(nowhere.problem, "There is no drive 'Q:'");  // the first one
  EXPECT_EQ(shell::parseCommandLine(nowhere.text).fields.size(), 4U);
}

TEST(Arguments, AFolderMayHoldBlanksAndQuotes) {
  for (const Texts& arguments :
       {Texts{"-d", "my pkg"}, Texts{"-d \"my pkg\""}, Texts{"-dx", "/home/u/here/my pkg", "more"}})
    EXPECT_EQ(parsed(arguments).folder, "C:\\here\\my pkg") << arguments.front();
  EXPECT_EQ(parsed({"-d", "\"C:\\my pkg\""}).folder, "C:\\my pkg");
  EXPECT_EQ(parsed({"-d", "\"/as/it/stands\""}).folder, "/as/it/stands");
  EXPECT_EQ(parsed({"-d", "say \"hi\""}).folder, "C:\\here\\" + platform::holdName("say \"hi\""));
  EXPECT_EQ(parsed({"-d"}).folder, std::nullopt);
  EXPECT_EQ(parsed({"-d C:\\my pkg"}).folder, "C:\\my");
  EXPECT_EQ(parsed({"-d", ""}).folder, "");
}

TEST(Arguments, PathListsAreQuotedWhereThereAreSeveral) {
  EXPECT_EQ(read({"a b", "/mnt/d/c", "\"C:\\as is\""}).text, "\"C:\\here\\a b\" \"D:\\c\" \"C:\\as is\"");
  EXPECT_EQ(read({"a b"}).text, "C:\\here\\a b");
  EXPECT_EQ(read({"\"C:\\a\" \"C:\\b\""}).text, "\"C:\\a\" \"C:\\b\"");
  EXPECT_EQ(parsed({"", "x"}).fields, (Texts{"", "C:\\here\\x"}));
  EXPECT_EQ(parsed({"a\" \"b", "c"}).fields,
            (Texts{"C:\\here\\" + platform::holdName("a\" \"b"), "C:\\here\\c"}));
  EXPECT_EQ(parsed({"-D"}).form, Form::Paths);
  EXPECT_EQ(parsed({"-style"}).fields, Texts{"C:\\here\\-style"});
}
