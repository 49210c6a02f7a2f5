#include "tools/confine/words.h"

#include <charconv>
#include <string_view>

#include "platform/ConfinementWords.h"

namespace confine {
namespace {

bool readNumber(std::string_view text, pid_t& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && number > 0;
}

bool readWord(const char* text, Words& words) {
  const std::string_view word = text;
  const std::string_view parent = platform::parentWord;
  const std::string_view write = platform::writeWord;
  if (word.starts_with(write)) {
    words.folders.push_back(text + write.size());
    return true;
  }
  if (word.starts_with(parent)) return readNumber(word.substr(parent.size()), words.parent);
  for (const auto& [name, flag] : {std::pair(platform::reportWord, &Words::report),
                                   {platform::mountsWord, &Words::mounts},
                                   {platform::processesWord, &Words::processes},
                                   {platform::landlockWord, &Words::landlock},
                                   {platform::callsWord, &Words::calls}})
    if (word == name) return words.*flag = true;
  return false;
}

}  // namespace

std::optional<Words> readWords(int count, char** texts) {
  Words words;
  for (int i = 1; i < count; ++i) {
    if (std::string_view(texts[i]) != "--") {
      if (!readWord(texts[i], words)) return std::nullopt;
      continue;
    }
    if (i + 2 >= count || words.parent == 0) return std::nullopt;
    words.program = texts[i + 1];
    words.arguments = texts + i + 2;
    return words;
  }
  return std::nullopt;
}

}  // namespace confine
