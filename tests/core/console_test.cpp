#include <gtest/gtest.h>

#include "platform/ConsoleCommand.h"
#include "platform/ConsoleText.h"

using platform::ConsoleCommand;
using platform::ConsoleText;
using platform::readConsoleCommand;

namespace {

/// As a window shows it that takes the lines after each piece.
std::string shown(std::string_view bytes, std::size_t piece) {
  ConsoleText text;
  std::string all;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
    text.feed(bytes.substr(0, piece));
    all.erase(all.rfind('\n') + 1).append(text.takeLines());
  }
  return all;
}

const std::string loader = "\"\"C:\\Tools\\wdx.exe\" -p 1 -b 115200 -i ";

}  // namespace

TEST(ConsoleText, ShowsWhatATerminalWould) {
  const std::string wrong = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> cases[] = {
      {"one\r\ntwo\n", "one\ntwo\n"},
      {"Sent 100%\rSent  20%\rDone", "Done  20%"},
      {"abc\b\bX\b\b\b\bY", "YXc"},
      {"a\tb\t\tc", "a       b               c"},
      {"12345678\tx\r\ty", "12345678y       x"},
      {"a\x07\x0B\x0C\x7F\xC2\x85z", "az"},
      {"\x1B[1;31mred\x1B[0m \x1B]0;title\x07t \x1BPdata\x1B\\d \x1B(Bc \x1B"
       "7s",
       "red t d c s"},
      {"\x1B]0;never ended\nnext", "\nnext"},
      {"a\x1B[3\rmb\x1B[1\x18"
       "c",
       "bc"},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\r\xC3\xBC", "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"\xFFz\xC3z\x80z\xE2\x82", wrong + "z" + wrong + "z" + wrong + "z"},
      {"\xC0\xAFz\xED\xA0\x80z\xF4\x90\x80\x80z", wrong + "z" + wrong + "z" + wrong + "z"},
      {"\xF8\x88\x80\x80z", wrong + wrong + wrong + wrong + "z"},
      {"\xE2\x80\xA9z\xEF\xB7\x90z\xEF\xBF\xBF", wrong + "z" + wrong + "z" + wrong}};
  for (const auto& [bytes, wanted] : cases)
    for (std::size_t piece = 1; piece <= bytes.size(); ++piece)
      EXPECT_EQ(shown(bytes, piece), wanted) << testing::PrintToString(bytes) << " by " << piece;
}

TEST(ConsoleText, NeitherLinesNorALineGrowForEver) {
  ConsoleText text;
  for (int i = 0; i < 30000; ++i) text.feed(std::to_string(i) + "\n");
  const std::string lines = text.takeLines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n') + 1, std::ptrdiff_t{ConsoleText::keptLines});
  EXPECT_TRUE(lines.ends_with("\n29999\n"));
  EXPECT_EQ(text.takeLines(), "");
  text.feed(std::string(2500, 'x') + std::string(3000, '\t') + 'y');
  EXPECT_EQ(text.takeLines(),
            std::string(1000, 'x') + "\n" + std::string(1000, 'x') + "\n" + std::string(500, 'x') + "\ny");
  text.startLine();
  text.startLine();
  EXPECT_EQ(text.takeLines(), "y\n");
}

TEST(ConsoleText, ANewLineStartsInNothingThatWasNeverEnded) {
  for (const char* cut : {"a\x1B", "a\x1B[1;", "a\x1B]0;title", "a\xE2\x82"}) {
    ConsoleText text;
    text.feed(cut);
    text.startLine();
    text.feed("[0 m");
    const std::string lines = text.takeLines();
    EXPECT_TRUE(lines.starts_with("a") && lines.ends_with("\n[0 m")) << lines;
  }
}

TEST(ConsoleCommand, ReadsTheLoadersCommand) {
  const ConsoleCommand command = readConsoleCommand("/c " + loader + "\"app.tgz\"\" & pause");
  EXPECT_EQ(command.arguments, (std::vector<std::string>{"-p", "1", "-b", "115200", "-i", "app.tgz"}));
  EXPECT_FALSE(command.staysOpen);
  EXPECT_TRUE(readConsoleCommand("/k " + loader + "\"app.tgz\"\" & pause").staysOpen);
  EXPECT_EQ(readConsoleCommand("/c \"\"C:\\a & b\\wdx.exe\"\"& pause ").program, "C:\\a & b\\wdx.exe");
}

TEST(ConsoleCommand, AnythingElseIsRefusedInWords) {
  const auto after = [](const char* rest) { return "/c " + loader + rest; };
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"it begins with neither /c nor /k.", {"", "/cx", "dir", "/x " + loader + "\"a\"\" & pause"}},
      {"it is not one program in quotes and then \"pause\".",
       {"/c dir", "/c ", "/c x\"C:\\wdx.exe\" -i a\" & pause", "/c \"", "/c dir & pause", after("\"a\"\""),
        after("\"a\"\" & pause & dir"), after("\"a\"\" && pause"), after("\"a\"\" | pause"),
        after("\"a\"\" & dir"), after("\"a\" >x\" & pause"), after("%x%\" & pause"),
        "/c \"\"\"\"\" & pause"}},
      {"it holds a control character.", {after("\"a\nb\"\" & pause")}},
      {"it does not begin with a program in quotes.",
       {"/c \"wdx.exe -i \"a\"\" & pause", "/c \"\"\" -i\" & pause", "/c \"\" & pause"}},
      {"something follows the program without a blank.", {"/c \"\"C:\\wdx.exe\"-i\" & pause"}}};
  for (const auto& [why, texts] : cases)
    for (const std::string& text : texts) {
      const ConsoleCommand command = readConsoleCommand(text);
      EXPECT_EQ(command.refusal, "This command is not understood: " + why) << text;
      EXPECT_EQ(command.program, "") << text;
    }
}
