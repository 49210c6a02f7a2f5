#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace platform {

/// What a program writes to a terminal, as lines of text. CR goes to the line's start, BS one place back, TAB
/// to the next multiple of eight; what is written there replaces what stood there. Escape sequences and other
/// control characters are dropped; bytes that are not UTF-8 become U+FFFD.
class ConsoleText {
 public:
  static constexpr std::size_t keptLines = 10000;   ///< of what has not been taken yet; the oldest go
  static constexpr std::size_t longestLine = 1000;  ///< characters; more go on in the next line

  /// A character or a sequence may be split between two calls.
  void feed(std::string_view bytes);
  /// Whoever writes next starts anew: at the start of a line, in no sequence that was never ended.
  void startLine();

  /// Lines, with a line feed between them, that take the place of the last line that was taken before.
  std::string takeLines();

 private:
  enum class State { Text, Escape, Sequence, String };

  void byte(unsigned char value);
  void character(char32_t code);
  void control(char32_t code);
  bool inSequence(char32_t code);
  void put(char32_t code);
  void endLine();

  char32_t code_ = 0;   // of the character whose bytes are being read
  char32_t least_ = 0;  // below it the form would be too long
  int missing_ = 0;     // bytes
  State state_ = State::Text;
  std::u32string line_;
  std::size_t column_ = 0;
  std::deque<std::string> lines_;  // before line_
};

}  // namespace platform
