#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace dos2unix {

/// What a text is made of, looked at block by block.
///
/// A file is binary when it holds NUL or another control character that no text has: all below blank except
/// tab, line feed, vertical tab, form feed, carriage return, backspace and escape, and DEL. A Ctrl+Z at the
/// very end is the end mark of an old text. UTF-16 is full of NULs and so counts as binary.
class Scan {
 public:
  void add(std::string_view block);
  bool binary() const { return binary_; }
  bool hasDosLines() const { return dosLines_; }

 private:
  bool binary_ = false;
  bool dosLines_ = false;
  bool endMark_ = false;   ///< the last byte so far was Ctrl+Z
  bool endsInCr_ = false;  ///< a line feed may follow in the next block
};

/// Takes each CR before an LF out of a block, in place; what is left stands at its beginning. A CR at the end
/// is kept back (`carriedCr`) until the next block shows what follows it; at the end of the file it is the
/// caller's to write. Any other CR stays.
std::size_t convert(char* block, std::size_t size, bool& carriedCr);

/// A name for a line of output: control characters and bytes that are no UTF-8 as \xHH, and so is a character
/// of every text that the caller looks for in the output.
std::string shown(std::string_view name);

}  // namespace dos2unix
