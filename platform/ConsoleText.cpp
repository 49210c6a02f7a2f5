#include "platform/ConsoleText.h"

#include <algorithm>

namespace platform {
namespace {

constexpr char32_t notACharacter = 0xFFFD;
constexpr char32_t backspace = 0x08, tab = 0x09, lineFeed = 0x0A, carriageReturn = 0x0D;
constexpr char32_t cancel = 0x18, substitute = 0x1A, escape = 0x1B, bell = 0x07;
constexpr std::size_t tabWidth = 8;

bool isControl(char32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

/// Surrogates, codes behind the last one, and what text documents take for ends of paragraphs and frames.
bool isText(char32_t code) {
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  const bool reserved = (code >= 0xFDD0 && code <= 0xFDEF) || (code & 0xFFFE) == 0xFFFE;
  return code <= 0x10FFFF && !surrogate && !reserved && code != 0x2028 && code != 0x2029;
}

void appendUtf8(std::string& text, char32_t code) {
  const auto append = [&text](char32_t value) { text += static_cast<char>(value); };
  if (code < 0x80) return append(code);
  if (code < 0x800) {
    append(0xC0 | (code >> 6));
  } else {
    if (code < 0x10000) {
      append(0xE0 | (code >> 12));
    } else {
      append(0xF0 | (code >> 18));
      append(0x80 | ((code >> 12) & 0x3F));
    }
    append(0x80 | ((code >> 6) & 0x3F));
  }
  append(0x80 | (code & 0x3F));
}

std::string toUtf8(const std::u32string& line) {
  std::string text;
  text.reserve(line.size());
  for (const char32_t code : line) appendUtf8(text, code);
  return text;
}

}  // namespace

void ConsoleText::feed(std::string_view bytes) {
  for (const char c : bytes) byte(static_cast<unsigned char>(c));
}

void ConsoleText::byte(unsigned char value) {
  if (missing_ > 0 && (value & 0xC0) == 0x80) {
    code_ = (code_ << 6) | (value & 0x3F);
    if (--missing_ == 0) character(code_ >= least_ && isText(code_) ? code_ : notACharacter);
    return;
  }
  if (missing_ > 0) character(notACharacter);
  missing_ = 0;
  if (value < 0x80) return character(value);
  if (value < 0xC0 || value > 0xF7) return character(notACharacter);
  missing_ = value < 0xE0 ? 1 : value < 0xF0 ? 2 : 3;
  least_ = missing_ == 1 ? 0x80 : missing_ == 2 ? 0x800 : 0x10000;
  code_ = value & (0x3FU >> missing_);
}

void ConsoleText::character(char32_t code) {
  if (state_ != State::Text && inSequence(code)) return;
  if (isControl(code))
    control(code);
  else
    put(code);
}

/// Whether the character belongs to a sequence (ECMA-48). One that never ends takes no more than its line.
bool ConsoleText::inSequence(char32_t code) {
  const bool string = state_ == State::String;
  if (code == cancel || code == substitute || (string && (code == bell || code == lineFeed))) {
    state_ = State::Text;
    return code != lineFeed;
  }
  if (code == escape) {
    state_ = State::Escape;
    return true;
  }
  if (string) return true;
  if (code < 0x20) return false;  // acts as it does elsewhere
  if (state_ == State::Escape && code == '[')
    state_ = State::Sequence;
  else if (state_ == State::Escape && std::u32string_view(U"]PX^_").find(code) != std::u32string_view::npos)
    state_ = State::String;
  else if (code >= (state_ == State::Sequence ? 0x40U : 0x30U))
    state_ = State::Text;
  return true;
}

void ConsoleText::control(char32_t code) {
  if (code == escape) state_ = State::Escape;
  if (code == carriageReturn) column_ = 0;
  if (code == backspace && column_ > 0) --column_;
  if (code == tab) column_ = std::min((column_ / tabWidth + 1) * tabWidth, longestLine);
  if (code == lineFeed) endLine();
}

void ConsoleText::put(char32_t code) {
  if (column_ == longestLine) endLine();
  if (column_ >= line_.size()) line_.resize(column_ + 1, U' ');
  line_[column_++] = code;
}

void ConsoleText::endLine() {
  lines_.push_back(toUtf8(line_));
  if (lines_.size() >= keptLines) lines_.pop_front();
  line_.clear();
  column_ = 0;
}

void ConsoleText::startLine() {
  if (missing_ > 0) character(notACharacter);
  missing_ = 0;
  state_ = State::Text;
  if (!line_.empty()) endLine();
}

std::string ConsoleText::takeLines() {
  std::string text;
  for (const std::string& line : lines_) text.append(line).append("\n");
  lines_.clear();
  return text + toUtf8(line_);
}

}  // namespace platform
