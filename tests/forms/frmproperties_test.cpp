#include "browser/ui/frmProperties.h"

#include "browser/ui/ApplyLayout.h"
#include "platform/HeldName.h"
#include "tests/forms/Forms.h"

namespace {

namespace fs = std::filesystem;
using browser::frmProperties;
using browser::PropertiesRecord;
using tests::the;

/// Whether this process reads below a folder.
bool reads(const std::string& folder) {
  std::error_code gone;
  const fs::directory_iterator open("/proc/self/fd");
  return std::any_of(begin(open), end(open), [&](const auto& entry) {
    return fs::read_symlink(entry.path(), gone).string().starts_with(folder);
  });
}

class PropertiesForm : public testworld::World {
 protected:
  frmProperties& open(const PropertiesRecord& record, std::vector<std::string> items = {}) {
    form_ = std::make_unique<frmProperties>(services(), record, std::move(items));
    form_->show();
    return *form_;
  }
  std::string text(const char* label) { return the<QLabel>(*form_, label).text().toStdString(); }
  bool shows(const std::string& size) {
    return QTest::qWaitFor([&] { return text("lblSize") == size; });
  }

  std::unique_ptr<frmProperties> form_;
};

TEST_F(PropertiesForm, OneFileShowsItsRowsAndItsSize) {
  write("a[*]<b>\n.txt", std::string(1536, 'x'));
  const std::string name = platform::holdName("a[*]<b>\n.txt");
  frmProperties& form =
      open({name + " Properties", "", "C:\\", 1'000'000'000, "-rw-r--r--"}, {"C:\\" + name});
  EXPECT_EQ(form.windowTitle(), "a[*][*]<b>\\x0A.txt Properties");
  EXPECT_EQ(text("lblLocation") + text("lblSize") + text("lblPermissions"), "C:\\calculating...-rw-r--r--");
  EXPECT_EQ(text("lblModified"), platform::desktop::Locale().dateTimeText(1'000'000'000));
  EXPECT_FALSE(the(form, "lblInfo").isVisible() || the(form, "Line1").isVisible());
  EXPECT_TRUE(shows("1.50 KB (1,536 bytes)"));
  for (const char* row : {"lblLocation", "lblSize", "lblModified", "lblPermissions"}) {
    const auto& value = the<QLabel>(form, row);
    const auto& title = the<QLabel>(form, (row + std::string("Title")).c_str());
    EXPECT_EQ(title.y(), value.y()) << row;
    EXPECT_EQ(value.accessibleName(), title.text() + ' ' + value.text());
  }
  EXPECT_EQ(form.width(), qRound(4400 * browser::pixelsPerTwip(form)));
  tests::checkTexts(form);
}

TEST_F(PropertiesForm, WhatHasNoTextIsHiddenAndNothingKeepsCalculating) {
  frmProperties& form = open({"C:\\ Properties", "0 files, 0 folders", "", {}, ""});
  for (const char* name : {"lblLocation", "lblLocationTitle", "lblModified", "lblModifiedTitle",
                           "lblPermissions", "lblPermissionsTitle"})
    EXPECT_FALSE(the(form, name).isVisible()) << name;
  for (const int wider : {0, 200}) {
    form.resize(form.width() + wider, form.height());
    QApplication::processEvents();
    const QRect line = the(form, "Line1").geometry();
    EXPECT_NEAR(form.width() - line.right() - 1, 720 * browser::pixelsPerTwip(form), 1);
  }
  auto& timer = the<QTimer>(form, "tmrSize");
  EXPECT_TRUE(timer.isActive());
  EXPECT_TRUE(QTest::qWaitFor([&] { return !timer.isActive(); }));
  QTest::qWait(100);
  EXPECT_EQ(text("lblSize"), "calculating...");
}

TEST_F(PropertiesForm, TheWindowGrowsForTextsUpToTheScreen) {
  write("sparse");
  fs::resize_file(host("sparse"), 2'222'222'222'222);
  const int least = open({"Properties", "1 files, 0 folders", "C:\\", {}, ""}, {"C:\\sparse"}).width();
  EXPECT_TRUE(shows("2069.61 GB (2,222,222,222,222 bytes)"));
  EXPECT_GT(form_->width(), least);
  tests::checkTexts(*form_);
  open({"Properties", "1 files, 0 folders", "C:\\", {}, ""}, {"C:\\sparse"}).resize(1000, 500);
  EXPECT_TRUE(shows("2069.61 GB (2,222,222,222,222 bytes)"));
  EXPECT_EQ(form_->width(), 1000) << "as somebody made it";
  EXPECT_NEAR(the(*form_, "Line1").geometry().right(), 1000 - 720 * browser::pixelsPerTwip(*form_), 2);
  const std::string folder = "C:\\" + std::string(3000, 'm') + "\\end\\";
  frmProperties& form = open({"Properties", "", folder, {}, ""});
  EXPECT_LE(form.width(), form.screen()->availableGeometry().width());
  auto& label = the<QLabel>(form, "lblLocation");
  EXPECT_LE(label.geometry().right(), form.width());
  const QImage plain = label.grab().toImage();
  QTest::mousePress(&label, Qt::LeftButton, {}, QPoint(2, 5));
  QTest::mouseMove(&label, QPoint(50, 5));
  EXPECT_EQ(label.selectedText().toStdString(), folder) << "with what is left out";
  EXPECT_NE(label.grab().toImage(), plain);
  QTest::keyClick(&label, Qt::Key_Escape);
  EXPECT_FALSE(form.isVisible());
}

TEST_F(PropertiesForm, ClosingStopsTheCount) {
  for (int i = 0; i < 1000; ++i) write("many/" + std::to_string(i), "");
  const std::function<void(frmProperties&)> closers[] = {
      [](auto& form) { tests::press(form, "cmdOK"); },
      [](auto& form) { QTest::keyClick(&form, Qt::Key_Escape); }, [](auto& form) { form.close(); }};
  for (const auto& close : closers) {
    std::vector<std::string> items(20'000, "C:\\many");
    items.front() = "C:\\many\\1";
    frmProperties& form = open({"Properties", "", "", {}, ""}, items);
    EXPECT_TRUE(shows("0 bytes"));
    QElapsedTimer time;
    time.start();
    close(form);
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !reads(host("many")); }, 50));
    EXPECT_LT(time.elapsed(), 50);
  }
}

}  // namespace
