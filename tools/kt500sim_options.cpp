#include "tools/kt500sim_options.h"

#include <charconv>
#include <cstddef>
#include <functional>
#include <limits>

namespace kt500sim {
namespace {

using Set = std::function<bool(Options&, const std::string& value)>;

struct Option {
  const char* name;
  bool takesValue;
  Set set;
};

template <typename Field>
Set number(Field Options::*field, std::uint64_t most = std::numeric_limits<std::int64_t>::max()) {
  return [field, most](Options& options, const std::string& value) {
    const auto read = readNumber(value);
    if (!read || *read > most) return false;
    if constexpr (std::is_same_v<Field, std::chrono::milliseconds>)
      options.*field = std::chrono::milliseconds(*read);
    else
      options.*field = static_cast<std::uint16_t>(*read);
    return true;
  };
}

Set optionalNumber(std::optional<std::uint64_t> Options::*field) {
  return [field](Options& options, const std::string& value) {
    options.*field = readNumber(value);
    return (options.*field).has_value();
  };
}

template <typename Field>
Set text(Field Options::*field) {
  return [field](Options& options, const std::string& value) {
    options.*field = value;
    return true;
  };
}

Set flag(bool Options::*field) {
  return [field](Options& options, const std::string&) { return options.*field = true; };
}

bool once(Options& options, const std::string&) {
  options.count = 1;
  return true;
}

const std::vector<Option>& table() {
  static const std::vector<Option> options{
      {"--port", true, number(&Options::port, std::numeric_limits<std::uint16_t>::max())},
      {"--listen", true, text(&Options::listenAddress)},
      {"--root", true, text(&Options::root)},
      {"--free", true, optionalNumber(&Options::free)},
      {"--install", false, flag(&Options::install)},
      {"--once", false, once},
      {"--count", true, optionalNumber(&Options::count)},
      {"--timeout", true, number(&Options::timeout, std::numeric_limits<std::int32_t>::max())},
      {"--limit", true, number(&Options::limit, std::numeric_limits<std::int32_t>::max())},
      {"--reply", true, text(&Options::reply)},
      {"--silent", false, flag(&Options::silent)},
      {"--delay", true, number(&Options::delay, std::numeric_limits<std::int32_t>::max())},
      {"--split-reply", false, flag(&Options::splitReply)},
      {"--close-after", true, optionalNumber(&Options::closeAfter)},
      {"--read-rate", true, optionalNumber(&Options::readRate)}};
  return options;
}

const Option* find(std::string_view name) {
  for (const Option& option : table())
    if (name == option.name) return &option;
  return nullptr;
}

}  // namespace

const char* const helpText =
    "kt500sim: a terminal to send files to, by up to 16 clients at once\n"
    "  --listen ADDR     address to listen on (127.0.0.1)\n"
    "  --port N          port (5142; 0: any free one, printed)\n"
    "  --root DIR        where files go (kt500), made when missing\n"
    "  --free BYTES      flash that is left (what the root's file system has)\n"
    "  --install         unpack received archives below ROOT/home, print what they hold\n"
    "  --once, --count N end after one connection, after N\n"
    "  --timeout MS      how long a client that says nothing is waited for (30000)\n"
    "  --limit MS        how long a client is served in all (3600000)\n"
    "faults:\n"
    "  --reply TEXT      answer this whatever was asked\n"
    "  --silent          never answer\n"
    "  --delay MS        wait before answering\n"
    "  --split-reply     send the answer byte by byte\n"
    "  --close-after N   close after N bytes of data\n"
    "  --read-rate N     read N bytes of data a second; 0 stops reading\n"
    "  --help            this text\n";

std::optional<std::uint64_t> readNumber(std::string_view text) {
  if (text.empty() || text[0] == '-' || (text.size() > 1 && text[0] == '0')) return std::nullopt;
  std::int64_t number = 0;
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failed != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return static_cast<std::uint64_t>(number);
}

ReadOptions readOptions(const std::vector<std::string>& words) {
  ReadOptions read;
  for (std::size_t i = 0; i < words.size() && read.error.empty(); ++i) {
    const std::string& word = words[i];
    if (word == "--help") {
      read.help = true;
      continue;
    }
    const Option* const option = find(word);
    const bool complete = option != nullptr && (!option->takesValue || i + 1 < words.size());
    const std::string value = complete && option->takesValue ? words[++i] : "";
    if (!complete || !option->set(read.options, value)) read.error = "cannot read " + word + " " + value;
  }
  return read;
}

}  // namespace kt500sim
