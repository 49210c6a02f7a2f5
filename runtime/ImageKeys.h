#pragma once

#include <string_view>

namespace runtime {

/// The pictures of the file lists: 21 images, counted from 1. Each stands for some extensions, or for a word
/// such as "fldr", and belongs to a category of the file-type filter (its tag).

constexpr int imageCount = 21;

/// The first image whose extensions or words hold `key`, without regard to case; the image of "nomatch" when
/// none does.
int getImageIndex(std::string_view key);

/// The same with exact case.
int ImageIndexForKey(std::string_view name);

/// The filter's category of an image, 0 to 9; 0 for an index that no image has.
int imageTag(int index);

}  // namespace runtime
