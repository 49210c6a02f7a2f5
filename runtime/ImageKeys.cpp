#include "runtime/ImageKeys.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/Ascii.h"

namespace runtime {
namespace {

struct Image {
  std::string_view key;
  int tag;
};

constexpr std::array<Image, imageCount> images{{
    {"|fldr|", 0},
    {"|fldrOpen|", 0},
    {"|nomatch|", 0},
    {"|avi|mpg|mov|mpeg|wmv|", 4},
    {"|zip|tgz|z|gz|tar|rar|", 6},
    {"|exe|cmd|bat|", 8},
    {"|txt|log|ini|inc|asm|js|shf|", 5},
    {"|jpg|jpeg|gif|bmp|ico|img|cur|png|", 2},
    {"|tif|", 2},
    {"|htm|html|shtml|", 7},
    {"|url|", 7},
    {"|hlp|", 1},
    {"|wrt|rtf|", 1},
    {"|asf|asx|wav|mp3|ram|mpa|cda|", 3},
    {"|doc|dochtml|dot|dothtml|", 1},
    {"|xla|xlb|xlc|xld|xls|xlt|csv|dif|", 1},
    {"|ppt|pps|ppa|adn|adp|", 1},
    {"|vsd|vss|vst|vsw|", 1},
    {"|pdf|", 1},
    {"|psd|ufo|", 1},
    {"|shortcut|", 9},
}};
constexpr int noMatch = 3;

template <typename Equal>
int firstImage(std::string_view name, Equal equal) {
  const std::string wanted = "|" + std::string(name) + "|";
  const auto holds = [&](const Image& image) {
    return std::search(image.key.begin(), image.key.end(), wanted.begin(), wanted.end(), equal) !=
           image.key.end();
  };
  const auto found = std::find_if(images.begin(), images.end(), holds);
  return found == images.end() ? noMatch : static_cast<int>(found - images.begin()) + 1;
}

}  // namespace

int getImageIndex(std::string_view key) {
  return firstImage(key, [](char a, char b) { return platform::lowerAscii(a) == platform::lowerAscii(b); });
}

int ImageIndexForKey(std::string_view name) { return firstImage(name, std::equal_to<>()); }

int imageTag(int index) {
  return index >= 1 && index <= imageCount ? images[static_cast<std::size_t>(index - 1)].tag : 0;
}

}  // namespace runtime
