#include "archive/ArchiveTreeBuilder.h"
#include "archive/ui/frameUntar.h"
#include "archive/ui/frmGetOutFolder.h"
#include "archive/ui/frmOverwriteFile.h"
#include "archive/ui/frmQuickExtract.h"
#include "platform/desktop/FolderList.h"
#include "platform/desktop/Gate.h"
#include "tests/forms/Forms.h"

namespace fs = std::filesystem;

namespace {

using archive::frameUntar;
using tests::onNextModal;
using testworld::has;

class UntarTest : public testworld::World {
 protected:
  UntarTest() {
    findTools();
    for (const char* name : {"in/usr/bin/app", "in/usr/lib", "in/top"}) write(name, "new");
    output("cd " + host("in") + " && tar -czf ../pkg.tgz usr top");
    QObject::connect(&frame_, &frameUntar::shown, [this] { events_ += "shown "; });
    QObject::connect(&frame_, &frameUntar::closed, [this] { events_ += "closed "; });
    person_.onEvents = [this] {
      QApplication::processEvents();
      if (meanwhile_) meanwhile_();
    };
    frame_.show();
  }

  template <typename Control = QWidget>
  Control& get(const char* name) {
    return tests::the<Control>(frame_, name);
  }
  void click(const char* name) { get<QPushButton>(name).click(); }
  std::string text(const char* name) { return get<QLineEdit>(name).text().toStdString(); }
  QAbstractItemModel& model() { return *get<QTreeView>("tarTree").model(); }
  QModelIndex at(const std::vector<int>& rows) {
    QModelIndex index;
    for (const int row : rows) index = model().index(row, 0, index);
    return index;
  }
  void openPackage() {
    window_.selected = {"C:\\pkg.tgz"};
    frame_.open();
  }
  /// A compressor that gives the first half of what it is to unpack, and then nothing more.
  void slowDown() const {
    write("in/half", std::string(900'000, 'h'));
    output("cd " + host("in") + " && tar -czf ../pkg.tgz top half usr");
    tool("gzip", "[ -e " + root_ + "/half ] || exec /usr/bin/gzip \"$@\"\n" +
                     "/usr/bin/gzip -dc | head -c 300000; touch " + root_ + "/at-work; sleep 20");
  }
  /// Presses the button while tar waits for more.
  void cancelAtWork(QPushButton& button) {
    person_.onOpened = [this] { std::ofstream(root_ + "/half") << ""; };
    meanwhile_ = [this, &button] {
      if (!fs::exists(root_ + "/at-work")) return;
      meanwhile_ = nullptr;
      button.click();
    };
  }
  void rightClickFirst() {
    auto& tree = get<QTreeView>("tarTree");
    emit tree.customContextMenuRequested(tree.visualRect(at({0})).center());
  }
  bool extractionEnabled() {
    const bool enabled = get<QPushButton>("cmdUnTar").isEnabled();
    for (const char* name : {"cmdUnTarSelected", "cmdSelectAllTar", "cmdSelectNoneTar"})
      EXPECT_EQ(get<QPushButton>(name).isEnabled(), enabled) << name;
    return enabled;
  }

  std::function<void()> meanwhile_;  // while events run
  tests::Pane window_;
  tests::Pickers pickers_;
  runtime::Services services_ = services();
  frameUntar frame_{services_, window_, pickers_};
  std::string events_;
};

TEST_F(UntarTest, OpensWithAHintOrListsTheSelectedArchive) {
  frame_.open();
  EXPECT_EQ(frame_.title(), QString("Extract Tar File"));
  EXPECT_EQ(text("txtFileIn") + "|" + text("txtOutLocation"),
            "Select Tar File To Extract|Select Output Folder");
  EXPECT_EQ(at({0}).data(), QString("Click 'Refresh Contents' to display Tar file contents"));
  EXPECT_FALSE(at({0}).data(Qt::CheckStateRole).isValid());
  click("cmdUnTarSelected");
  EXPECT_EQ(person_.told.back(), "Pakrune|There are no files to extract, please select a tar file");
  click("cmdRefresh");
  EXPECT_EQ(person_.told.back(), "Input not selected..|Please select a Tar file first");
  EXPECT_EQ(get<QLineEdit>("txtFileIn").selectedText(), QString("Select Tar File To Extract"));
  openPackage();
  EXPECT_EQ(events_, "shown shown ");
  EXPECT_EQ(text("txtFileIn") + "|" + text("txtOutLocation"), "C:\\pkg.tgz|C:\\pkg\\");
  EXPECT_EQ(at({0}).data().toString() + at({0, 0, 0}).data().toString() + at({1}).data().toString(),
            "usrapptop");
  EXPECT_TRUE(extractionEnabled() && get("tarTree").isVisible());
  for (const char* hidden : {"pbTarRefresh", "frameTarRefreshLabel", "TreeView1"})
    EXPECT_FALSE(get(hidden).isVisible()) << hidden;
  const QAbstractItemModelTester tester(&model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
  click("cmdRefresh");
  EXPECT_EQ(model().rowCount(), 2);
  frame_.open("C:\\in\\x.tar");
  EXPECT_EQ(person_.told.back(), "Error|Invalid tar file C:\\in\\x.tar");
  write("bad.tgz", "no archive");
  frame_.open("C:\\bad.tgz");
  EXPECT_TRUE(has(person_.told.back(), "Error Opening Package|An error occurred"));
  EXPECT_FALSE(extractionEnabled());
  EXPECT_TRUE(get("cmdRefresh").isEnabled() && get("txtFileIn").isEnabled());
  EXPECT_EQ(model().rowCount(), 0);
}

TEST_F(UntarTest, ChecksColoursAndImages) {
  openPackage();
  const QAbstractItemModelTester tester(&model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
  const auto checked = [](const QModelIndex& index) {
    return index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
  };
  EXPECT_TRUE(checked(at({0})) && checked(at({0, 0, 0})));
  model().setData(at({0, 0, 0}), Qt::Unchecked, Qt::CheckStateRole);
  EXPECT_FALSE(checked(at({0})) || checked(at({0, 0})));
  EXPECT_EQ(at({0}).data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
  EXPECT_FALSE(at({0, 1}).data(Qt::ForegroundRole).isValid());
  click("cmdSelectAllTar");
  EXPECT_TRUE(checked(at({0, 0, 0})) && !at({0}).data(Qt::ForegroundRole).isValid());
  QSignalSpy repainted(&model(), &QAbstractItemModel::dataChanged);
  click("cmdSelectNoneTar");
  EXPECT_FALSE(checked(at({0})) || checked(at({1})));
  EXPECT_TRUE(std::any_of(repainted.begin(), repainted.end(), [this](const QList<QVariant>& change) {
    return change[0].toModelIndex() == at({0, 0, 0});
  }));
  const auto picture = [&] { return at({0}).data(Qt::DecorationRole).value<QIcon>().cacheKey(); };
  const qint64 closed = picture();
  get<QTreeView>("tarTree").expand(at({0}));
  EXPECT_NE(picture(), closed);
  get<QTreeView>("tarTree").collapse(at({0}));
  EXPECT_EQ(picture(), closed);
}

TEST_F(UntarTest, RightClickShowsAnEntrysProperties) {
  openPackage();
  auto& tree = get<QTreeView>("tarTree");
  auto& menu = get<QMenu>("mnuTarTreeRightClick");
  EXPECT_EQ(menu.title(), QString("TAR_RIGHT_CLICK"));
  emit tree.customContextMenuRequested(tree.visualRect(at({1})).center());
  EXPECT_TRUE(menu.isVisible());
  get<QAction>("mnuTarTreeProperties").trigger();
  EXPECT_TRUE(has(person_.told.back(), "top Properties|Size:                 3 bytes\rModified:          "));
  tree.setCurrentIndex(at({1}));
  const QPoint empty(5, tree.viewport()->height() - 5);
  tests::leftClick(tree.viewport(), empty);
  EXPECT_FALSE(tree.currentIndex().isValid());
  emit tree.customContextMenuRequested(empty);
  EXPECT_FALSE(menu.isVisible());
}

TEST_F(UntarTest, OpensAnArchiveInsideAndGoesBack) {
  output("cd " + host("") +
         " && mkdir -p m/deep && cp pkg.tgz m/deep/data.tar.gz && tar -C m -cf m/mid.tar deep && "
         "echo no archive >m/bad.tgz && tar -C m -cf out.tar bad.tgz mid.tar deep/data.tar.gz deep");
  frame_.open("C:\\out.tar");
  auto& tree = get<QTreeView>("tarTree");
  const auto where = [this] {
    return text("txtFileIn") + '|' + text("txtOutLocation") + '|' +
           get<QLabel>("Label7").text().toStdString();
  };
  const auto scratchFolders = [this] {
    return std::distance(fs::directory_iterator(root_ + "/tmp"), fs::directory_iterator());
  };
  const auto openMember = [&](const QModelIndex& index) {
    tree.setCurrentIndex(index);
    const QPoint place = tree.inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, place, tree.viewport()->mapToGlobal(place));
    QApplication::sendEvent(&tree, &menuKey);
    EXPECT_TRUE(get<QMenu>("mnuTarTreeRightClick").isVisible());
    get<QMenu>("mnuTarTreeRightClick").hide();
    get<QAction>("mnuTarTreeOpen").trigger();
    return get<QAction>("mnuTarTreeOpen").isEnabled();
  };
  const std::string outer = "C:\\out.tar|C:\\out\\|Contents of Tar File:";
  EXPECT_FALSE(openMember(at({0})) || get("cmdBack").isVisible());
  model().setData(at({1}), Qt::Unchecked, Qt::CheckStateRole);
  tree.expand(at({0}));
  openMember(at({1}));
  EXPECT_TRUE(has(person_.told.back(), "Error Opening Package|"));
  EXPECT_EQ(where(), outer);
  EXPECT_EQ(at({1}).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
  EXPECT_TRUE(tree.isExpanded(at({0})) && tree.currentIndex() == at({1}) && extractionEnabled());
  EXPECT_EQ(scratchFolders(), 0);

  openMember(at({2}));
  EXPECT_EQ(where(), "C:\\out.tar|C:\\out\\mid\\|Contents of mid.tar in C:\\out.tar:");
  openMember(at({0, 0}));
  EXPECT_EQ(where(),
            "C:\\out.tar|C:\\out\\mid\\data.tar\\|Contents of data.tar.gz in mid.tar in C:\\out.tar:");
  click("cmdRefresh");
  EXPECT_EQ(at({1}).data().toString().toStdString() + std::to_string(scratchFolders()), "top2");
  get<QLineEdit>("txtOutLocation").setText("C:\\mine");
  click("cmdBack");
  EXPECT_EQ(where(), "C:\\out.tar|C:\\mine|Contents of mid.tar in C:\\out.tar:");
  EXPECT_EQ(scratchFolders(), 1);
  openMember(at({0, 0}));
  model().setData(at({0}), Qt::Unchecked, Qt::CheckStateRole);
  click("cmdUnTarSelected");
  EXPECT_EQ(log_.all, " Extracted file: data.tar.gz in mid.tar in C:\\out.tar\n");
  EXPECT_TRUE(bytes("mine/top") == "new" && !fs::exists(host("mine/usr")));
  EXPECT_EQ(events_, "shown closed ");
  EXPECT_EQ(scratchFolders(), 0);
}

TEST_F(UntarTest, WhatIsInsideClosesWithTheArchiveAroundIt) {
  fs::create_directory(host("m"));
  fs::copy(host("pkg.tgz"), host("m/a.tgz"));
  const auto type = [this] { get<QLineEdit>("txtFileIn").setText("C:\\m\\a.tgz"); };
  const auto pick = [this](const char* path) { pickers_.answer = path, click("cmdGetFile"); };
  const auto change = [this] {
    output("cd " + host("in") + " && tar -cf ../out.tar top && touch -d 2001-01-01 ../out.tar");
  };
  const std::vector<std::pair<const char*, std::function<void()>>> ways = {
      {"usr", [&] { type(), click("cmdRefresh"); }}, {"usr", [&] { type(), click("cmdUnTar"); }},
      {"a.tgz", [&] { pick("C:\\out.tar"); }},       {"", [&] { click("cmdCancel"); }},
      {"top", [&] { change(), click("cmdBack"); }},  {"top", [&] { change(), click("cmdRefresh"); }},
      {"a.tgz", [&] { frame_.open("C:\\out.tar"); }}};
  for (const auto& [shown, act] : ways) {
    output("cd " + host("") + " && tar -C m -cf out.tar a.tgz");
    frame_.open("C:\\out.tar");
    rightClickFirst();
    get<QAction>("mnuTarTreeOpen").trigger();
    ASSERT_TRUE(get("cmdBack").isVisible() && model().rowCount() == 2);
    act();
    EXPECT_FALSE(get("cmdBack").isVisible());
    EXPECT_EQ(at({0}).data().toString(), shown);
    EXPECT_EQ(get<QLabel>("Label7").text(), QString("Contents of Tar File:"));
    EXPECT_TRUE(fs::is_empty(root_ + "/tmp"));
  }
  rightClickFirst();
  change();
  get<QAction>("mnuTarTreeOpen").trigger();
  EXPECT_EQ(at({0}).data().toString(), "top");
}

TEST_F(UntarTest, CancelDuringAListingKeepsTheNodesSoFar) {
  for (const std::string& name : numbered("many/f", 3000)) write(name, "");
  output("cd " + host("many") + " && tar -cf ../many.tar .");
  meanwhile_ = [this] {
    if (get("tarTree").isVisible()) return;
    EXPECT_FALSE(extractionEnabled() || get("cmdGetFile").isEnabled());
    EXPECT_TRUE(get("pbTarRefresh").isVisible());
    meanwhile_ = nullptr;
    click("cmdCancel");
  };
  frame_.open("C:\\many.tar");
  EXPECT_LT(model().rowCount(), 3000);
  EXPECT_EQ(events_, "shown closed ");
  EXPECT_TRUE(get("tarTree").isVisible() && get("cmdRefresh").isEnabled());
  EXPECT_FALSE(extractionEnabled());
}

TEST_F(UntarTest, ExtractsAndCloses) {
  openPackage();
  model().setData(at({0, 1}), Qt::Unchecked, Qt::CheckStateRole);
  person_.onMessage = [this] { model().setData(at({1}), Qt::Unchecked, Qt::CheckStateRole); };  // too late
  click("cmdUnTarSelected");
  EXPECT_EQ(bytes("pkg/usr/bin/app") + bytes("pkg/top"), "newnew");
  EXPECT_FALSE(fs::exists(host("pkg/usr/lib")));
  EXPECT_EQ(events_, "shown closed ");
  EXPECT_EQ(window_.refreshes, 1);
  EXPECT_EQ(log_.all, " Extracted file: C:\\pkg.tgz\n");
  get<QLineEdit>("txtOutLocation").setText("Select Output Folder");
  click("cmdUnTar");
  EXPECT_EQ(person_.told.back(), "Ouput not selected..|Please choose an output location");
  EXPECT_EQ(window_.refreshes, 1);
}

TEST_F(UntarTest, ListsAgainWhenTheBoxNamesAnotherArchive) {
  openPackage();
  write("other/x");
  output("cd " + host("other") + " && tar -cf ../other.tar x && touch -d 2001-01-01 ../other.tar");
  get<QLineEdit>("txtFileIn").setText("C:\\other.tar");
  click("cmdUnTar");
  EXPECT_EQ(at({0}).data(), QString("x"));
  EXPECT_TRUE(fs::exists(host("pkg/x")) && !fs::exists(host("pkg/top")));
  fs::remove(host("pkg/x"));
  output("cd " + host("in") + " && tar -cf ../other.tar usr");
  click("cmdUnTar");
  EXPECT_TRUE(fs::exists(host("pkg/usr/lib")));
}

TEST_F(UntarTest, OverwriteDialogGivesEveryAnswer) {
  write("pkg/usr/lib", "old");
  write("pkg/top", "old");
  openPackage();
  const auto press = [](const char* name, bool folder, std::function<void()> then = {}) {
    onNextModal<archive::frmOverwriteFile>([=](archive::frmOverwriteFile& dialog) {
      const auto label = [&](const char* field) { return tests::the<QLabel>(dialog, field).text(); };
      const QString size = folder ? "0 bytes, " : "3 bytes, ";
      EXPECT_EQ(dialog.windowTitle(), QString("Pakrune"));
      EXPECT_EQ(label("lblPrompt"), folder ? "Overwrite Existing Folder?" : "Confirm File Overwrite?");
      EXPECT_EQ(tests::the(dialog, "lblFolderNote").isVisible(), folder);
      EXPECT_EQ(label("lblPath"), folder ? "C:\\pkg\\usr" : "C:\\pkg\\top");
      EXPECT_TRUE(label("lblInTar").startsWith(size + "2")) << label("lblInTar").toStdString();
      EXPECT_TRUE(label("lblToReplace").startsWith(size)) << label("lblToReplace").toStdString();
      if (then) then();
      *name == '\0' ? QTest::keyClick(&dialog, Qt::Key_Escape) : tests::press(dialog, name);
    });
  };
  const auto result = [this] {
    click("cmdUnTar");
    return bytes("pkg/usr/lib") + bytes("pkg/top");
  };
  for (const char* refusal : {"cmdCancel", ""}) {
    press(refusal, true);
    EXPECT_EQ(result(), "oldold");
    EXPECT_EQ(get<QLineEdit>("txtOutLocation").selectedText(), QString("C:\\pkg\\"));
  }
  press("cmdNo", true, [&] { press("cmdYes", false); });
  EXPECT_EQ(result(), "oldnew");
  write("pkg/top", "old");
  press("cmdYes", true, [&] { press("cmdNo", false); });
  EXPECT_EQ(result(), "newold");
  press("cmdAll", true);
  EXPECT_EQ(result(), "newnew");
}

TEST_F(UntarTest, PickersStartBesideTheArchive) {
  frame_.open();
  get<QLineEdit>("txtFileIn").setText("C:\\in\\a.tar");
  pickers_.answer = "C:\\pkg.tgz";
  click("cmdGetFile");
  EXPECT_EQ(pickers_.asked.title + pickers_.asked.startFolder, "Select Tar FileC:\\in\\");
  EXPECT_EQ(pickers_.asked.filterIndex, 4);
  EXPECT_EQ(at({1}).data(), QString("top"));
  for (const char* answer : {"C:\\in", ""}) {
    pickers_.answer = answer;
    click("cmdSelectOut");
    EXPECT_EQ(pickers_.asked.title, "Please select an output folder.");
    EXPECT_EQ(text("txtOutLocation"), "C:\\in");
  }
  pickers_.works = false;
  onNextModal<archive::frmGetOutFolder>([](archive::frmGetOutFolder& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QString("Choose Output Folder"));
    EXPECT_EQ(dialog.GetDirListPath(), "C:\\");
    tests::the<platform::desktop::FolderList>(dialog, "dirList").setPath("C:\\in\\usr");
    tests::press(dialog, "cmdOK");
  });
  click("cmdSelectOut");
  EXPECT_EQ(text("txtOutLocation"), "C:\\in\\usr");
}

TEST_F(UntarTest, NewOutputFolderNeedsAProperName) {
  archive::frmGetOutFolder dialog(services_, "C:\\in");
  const auto type = [](const char* name, std::function<void()> then = {}) {
    onNextModal<QInputDialog>([=](QInputDialog& box) {
      EXPECT_EQ(box.labelText(), QString("Enter new folder name"));
      box.setTextValue(name);
      if (then) then();
      box.accept();
    });
  };
  type("a\"b", [&] { type("fresh"); });
  tests::press(dialog, "cmdNewFolder");
  EXPECT_EQ(
      person_.told.back(),
      "Folder Name Error..|Folder name cannot contain any of the following characters:\r\\ / : * ? \" < > |");
  EXPECT_TRUE(fs::is_directory(host("in/fresh")));
  EXPECT_FALSE(archive::isFolderName("a\xEF\x80\xBA"));
}

TEST_F(UntarTest, QuickExtractionStaysShownAndItsCancelEndsTheProgram) {
  archive::frmQuickExtract quick(services_);
  quick.show();
  fs::create_directory(host("quick"));
  auto& bar = tests::the<QProgressBar>(quick, "ProgressBar1");
  bool moves = false;
  meanwhile_ = [&] { moves = moves || (bar.minimum() == 0 && bar.maximum() == 0); };
  EXPECT_EQ(quick.QuickExtract("C:\\pkg.tgz", "C:\\quick").end, runtime::JobEnd::Done);
  EXPECT_EQ(bytes("quick/top"), "new");
  EXPECT_TRUE(quick.isVisible() && moves);
  EXPECT_EQ(bar.value(), bar.maximum());
  slowDown();
  cancelAtWork(tests::the<QPushButton>(quick, "cmdCancel"));
  const platform::desktop::Gate gate(busy_);
  const platform::Busy::Scope busy(busy_);
  EXPECT_EQ(quick.QuickExtract("C:\\pkg.tgz", "C:\\half").end, runtime::JobEnd::Stopped);
  EXPECT_TRUE(busy_.endRequested());
  EXPECT_EQ(bar.value(), 1);  // the second member is at work
  EXPECT_GT(bar.maximum(), 2);
  EXPECT_EQ(bytes("half/top"), "new");
  EXPECT_FALSE(fs::exists(host("half/half")));
}

TEST_F(UntarTest, CancelWhileTarRunsLeavesTheFrameAndThePaneIsListedAgain) {
  slowDown();
  openPackage();
  cancelAtWork(get<QPushButton>("cmdCancel"));
  click("cmdUnTar");
  EXPECT_EQ(events_, "shown closed ");
  EXPECT_EQ(window_.refreshes, 1);
  EXPECT_TRUE(fs::exists(host("pkg/top")) && !fs::exists(host("pkg/half")));
  EXPECT_TRUE(log_.all.ends_with(" Stopped: extracting C:\\pkg.tgz\n")) << log_.all;
}

TEST_F(UntarTest, ClosingDuringTheListingOfAnExtractionExtractsNothing) {
  openPackage();
  output("touch -d 2001-01-01 " + host("pkg.tgz"));
  meanwhile_ = [this] {
    if (get("frameTarRefreshLabel").isVisible()) busy_.requestEnd();
  };
  click("cmdUnTar");
  EXPECT_EQ(log_.all, " Stopped: extracting C:\\pkg.tgz\n");
  EXPECT_FALSE(fs::exists(host("pkg")) || extractionEnabled());
}

TEST_F(UntarTest, WhatIsLeftOutIsShownAtTheEnd) {
  output("cd " + host("in") + " && tar -cPf ../up.tar top ../in/usr");
  frame_.open("C:\\up.tar");
  click("cmdUnTar");
  EXPECT_EQ(bytes("up/top"), "new");
  EXPECT_TRUE(has(person_.told.back(), "Pakrune|Not extracted, its name leads out"));
  EXPECT_EQ(window_.refreshes, 1);
}

}  // namespace
