#include "runtime/ImageKeys.h"

#include <gtest/gtest.h>

using namespace runtime;

TEST(ImageKeys, ExtensionsFindTheirImageWhole) {
  EXPECT_EQ(getImageIndex("fldr"), 1);
  EXPECT_EQ(getImageIndex("FLDROPEN"), 2);
  EXPECT_EQ(getImageIndex("nomatch"), 3);
  EXPECT_EQ(getImageIndex("Tgz"), 5);
  EXPECT_EQ(getImageIndex("shortcut"), imageCount);
  for (const char* none : {"", "lnk", "tg", "gz ", "zip|gz"}) EXPECT_EQ(getImageIndex(none), 3) << none;
}

TEST(ImageKeys, TheTreesLookUpIsExact) {
  EXPECT_EQ(ImageIndexForKey("fldrOpen"), 2);
  EXPECT_EQ(ImageIndexForKey("fldropen"), 3);
  EXPECT_EQ(ImageIndexForKey("TGZ"), 3);
  EXPECT_EQ(ImageIndexForKey("pdf"), 19);
}

TEST(ImageKeys, TagsAreTheFiltersCategories) {
  EXPECT_EQ(imageTag(getImageIndex("mov")), 4);
  EXPECT_EQ(imageTag(getImageIndex("js")), 5);
  EXPECT_EQ(imageTag(getImageIndex("url")), 7);
  EXPECT_EQ(imageTag(imageCount), 9);
  for (const int none : {-1, 0, 3, imageCount + 1}) EXPECT_EQ(imageTag(none), 0);
}
