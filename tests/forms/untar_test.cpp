#include "archive/ArchiveTreeBuilder.h"
#include "archive/ui/TarTree.h"
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
  archive::TarTree& tree() { return get<archive::TarTree>("tarTree"); }
  QAbstractItemModel& model() { return *tree().model(); }
  QModelIndex at(const std::vector<int>& rows) {
    QModelIndex index;
    for (const int row : rows) index = model().index(row, 0, index);
    return index;
  }
  void openPackage() {
    window_.selected = {"C:\\pkg.tgz"};
    frame_.open();
  }
  /// A compressor gives the first half of what it is to unpack, and then nothing more: then the button is
  /// pressed.
  void cancelAtWork(QPushButton& button) {
    write("in/half", std::string(900'000, 'h'));
    output("cd " + host("in") + " && tar -czf ../pkg.tgz top half usr");
    tool("gzip", "[ -e " + root_ + "/half ] || exec /usr/bin/gzip \"$@\"\n" +
                     "/usr/bin/gzip -dc | head -c 300000; touch " + root_ + "/at-work; sleep 20");
    person_.onOpened = [this] { std::ofstream(root_ + "/half") << ""; };
    meanwhile_ = [this, &button] {
      if (!fs::exists(root_ + "/at-work")) return;
      meanwhile_ = nullptr;
      button.click();
    };
  }
  void rightClick(int row) { emit tree().customContextMenuRequested(tree().visualRect(at({row})).center()); }
  int ticked(const std::vector<int>& rows) { return at(rows).data(Qt::CheckStateRole).toInt(); }
  void untick(const std::vector<int>& rows) { model().setData(at(rows), Qt::Unchecked, Qt::CheckStateRole); }
  std::ptrdiff_t scratchFolders() const {
    return std::distance(fs::directory_iterator(root_ + "/tmp"), fs::directory_iterator());
  }
  std::string where() {
    return text("txtFileIn") + '|' + text("txtOutLocation") + '|' +
           get<QLabel>("Label7").text().toStdString();
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

TEST_F(UntarTest, OpensWithAHintOrListsTheSelectedArchiveAndTellsOfItsEntries) {
  frame_.open();
  EXPECT_EQ(where(), "Select Tar File To Extract|Select Output Folder|Contents of Tar File:");
  EXPECT_EQ(at({0}).data(), QString("Click 'Refresh Contents' to display Tar file contents"));
  EXPECT_FALSE(at({0}).data(Qt::CheckStateRole).isValid());
  click("cmdUnTarSelected");
  EXPECT_EQ(person_.told.back(), "Pakrune|There are no files to extract, please select a tar file");
  click("cmdRefresh");
  EXPECT_EQ(person_.told.back(), "Input not selected..|Please select a Tar file first");
  openPackage();
  EXPECT_TRUE(extractionEnabled() && tree().isVisible());
  EXPECT_FALSE(get("pbTarRefresh").isVisible() || get("frameTarRefreshLabel").isVisible());
  auto& menu = get<QMenu>("mnuTarTreeRightClick");
  rightClick(1);
  get<QAction>("mnuTarTreeProperties").trigger();
  EXPECT_TRUE(has(person_.told.back(), "top Properties|Size:                 3 bytes\rModified:          "));
  tree().setCurrentIndex(at({1}));
  const QPoint empty(5, tree().viewport()->height() - 5);
  tests::leftClick(tree().viewport(), empty);
  EXPECT_FALSE(tree().currentIndex().isValid());
  emit tree().customContextMenuRequested(empty);
  EXPECT_FALSE(menu.isVisible());
  write("bad.tgz", "no archive");
  frame_.open("C:\\bad.tgz");
  EXPECT_TRUE(has(person_.told.back(), "Error Opening Package|An error occurred"));
  EXPECT_FALSE(extractionEnabled() || model().rowCount() > 0);
  EXPECT_TRUE(get("cmdRefresh").isEnabled() && frame_.focusWidget() == &get("txtFileIn"));
}

TEST_F(UntarTest, ChecksColoursAndImages) {
  openPackage();
  const QAbstractItemModelTester tester(&model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
  tree().expandAll();
  auto* const face = QAccessible::queryAccessibleInterface(&tree());
  const auto entry = [face](int row) { return face->child(1 + row); };  // behind the header
  const auto said = [&] { return entry(0)->text(QAccessible::Description).toStdString(); };
  EXPECT_EQ(said() + entry(2)->text(QAccessible::Name).toStdString(), "tickedapp");
  const QString toggle = QAccessibleActionInterface::toggleAction();
  std::optional<platform::Busy::Scope> job(busy_);
  entry(2)->actionInterface()->doAction(toggle);
  job.reset();
  for (const bool left : {false, true, false}) {
    entry(2)->actionInterface()->doAction(toggle);
    EXPECT_EQ(ticked({0, 0, 0}) == Qt::Checked, left);
    EXPECT_FALSE(ticked({0}) || ticked({0, 0}));
    EXPECT_EQ(said(), "partly ticked");
  }
  EXPECT_EQ(at({0}).data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
  click("cmdSelectAllTar");
  EXPECT_FALSE(at({0}).data(Qt::ForegroundRole).isValid());
  QSignalSpy repainted(&model(), &QAbstractItemModel::dataChanged);
  click("cmdSelectNoneTar");
  EXPECT_EQ(said(), "not ticked");
  const auto changed = [this](const auto& change) { return change[0].toModelIndex() == at({0, 0, 0}); };
  EXPECT_TRUE(std::ranges::any_of(repainted, changed));
  const auto picture = [&] { return at({0}).data(Qt::DecorationRole).value<QIcon>().cacheKey(); };
  const qint64 opened = picture();
  tree().collapse(at({0}));
  EXPECT_NE(picture(), opened);
  tree().expand(at({0}));
  EXPECT_EQ(picture(), opened);
}

TEST_F(UntarTest, OpensAnArchiveInsideAndGoesBack) {
  output("cd " + host("") +
         " && mkdir -p m/deep && cp pkg.tgz m/deep/data.tar.gz && tar -C m -cf m/mid.tar deep && "
         "echo no archive >m/bad.tgz && tar -C m -cf out.tar bad.tgz mid.tar deep/data.tar.gz deep");
  frame_.open("C:\\out.tar");
  const auto openMember = [&](const QModelIndex& index) {
    tree().setCurrentIndex(index);
    const QPoint place = tree().inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, place, tree().viewport()->mapToGlobal(place));
    QApplication::sendEvent(&tree(), &menuKey);
    EXPECT_TRUE(get<QMenu>("mnuTarTreeRightClick").isVisible());
    get<QMenu>("mnuTarTreeRightClick").hide();
    get<QAction>("mnuTarTreeOpen").trigger();
    return get<QAction>("mnuTarTreeOpen").isEnabled();
  };
  EXPECT_FALSE(openMember(at({0})) || get("cmdBack").isVisible());
  untick({1});
  tree().expand(at({0}));
  openMember(at({1}));
  EXPECT_TRUE(has(person_.told.back(), "Error Opening Package|"));
  EXPECT_EQ(where(), "C:\\out.tar|C:\\out\\|Contents of Tar File:");
  EXPECT_TRUE(tree().isExpanded(at({0})) && tree().currentIndex() == at({1}) && extractionEnabled());
  EXPECT_FALSE(ticked({1}) || scratchFolders() > 0);
  openMember(at({2}));
  openMember(at({0, 0}));
  click("cmdRefresh");
  EXPECT_EQ(where(),
            "C:\\out.tar|C:\\out\\mid\\data.tar\\|Contents of data.tar.gz in mid.tar in C:\\out.tar:");
  EXPECT_EQ(at({1}).data().toString().toStdString() + std::to_string(scratchFolders()), "top2");
  EXPECT_EQ(get<QLabel>("Label7").buddy(), nullptr) << "a '&' in the name would be a key of the tree";
  get<QLineEdit>("txtOutLocation").setText("C:\\mine");
  click("cmdBack");
  EXPECT_EQ(where(), "C:\\out.tar|C:\\mine|Contents of mid.tar in C:\\out.tar:");
  EXPECT_EQ(scratchFolders(), 1);
  openMember(at({0, 0}));
  untick({0});
  click("cmdUnTarSelected");
  EXPECT_EQ(log_.all, " Extracted file: data.tar.gz in mid.tar in C:\\out.tar\n");
  EXPECT_TRUE(bytes("mine/top") == "new" && !fs::exists(host("mine/usr")));
  EXPECT_EQ(events_ + std::to_string(scratchFolders()), "shown closed 0");
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
    rightClick(0);
    get<QAction>("mnuTarTreeOpen").trigger();
    ASSERT_TRUE(get("cmdBack").isVisible() && model().rowCount() == 2);
    act();
    EXPECT_FALSE(get("cmdBack").isVisible() || scratchFolders() > 0);
    EXPECT_EQ(at({0}).data().toString(), shown);
    EXPECT_TRUE(where().ends_with("|Contents of Tar File:"));
  }
  rightClick(0);
  change();
  get<QAction>("mnuTarTreeOpen").trigger();
  EXPECT_EQ(at({0}).data().toString(), "top");
}

TEST_F(UntarTest, CancelDuringAListingKeepsTheNodesSoFar) {
  for (const std::string& name : numbered("many/f", 3000)) write(name, "");
  output("cd " + host("many") + " && tar -cf ../many.tar .");
  meanwhile_ = [this] {
    if (tree().isVisible()) return;
    EXPECT_TRUE(!extractionEnabled() && !get("cmdGetFile").isEnabled() && get("pbTarRefresh").isVisible());
    meanwhile_ = nullptr;
    click("cmdCancel");
  };
  frame_.open("C:\\many.tar");
  emit tree().dragBegun();
  EXPECT_LT(model().rowCount(), 3000);
  EXPECT_EQ(events_, "shown closed ");
  EXPECT_TRUE(tree().isVisible() && get("cmdRefresh").isEnabled());
  EXPECT_TRUE(!extractionEnabled() && person_.told.empty());
}

TEST_F(UntarTest, ExtractsAndCloses) {
  openPackage();
  untick({0, 1});
  person_.onMessage = [this] { untick({1}); };  // too late
  click("cmdUnTarSelected");
  EXPECT_EQ(bytes("pkg/usr/bin/app") + bytes("pkg/top"), "newnew");
  EXPECT_FALSE(fs::exists(host("pkg/usr/lib")));
  EXPECT_EQ(log_.all, " Extracted file: C:\\pkg.tgz\n");
  output("cd " + host("in") + " && tar -cPf ../up.tar top ../in/usr");
  frame_.open("C:\\up.tar");
  click("cmdUnTar");
  EXPECT_TRUE(has(person_.told.back(), "Pakrune|Not extracted, its name leads out"));
  EXPECT_EQ(bytes("up/top") + std::to_string(window_.refreshes), "new2");
}

TEST_F(UntarTest, AnArchiveNamedByHandIsListedAndProposesItsFolder) {
  auto& box = get<QLineEdit>("txtFileIn");
  output("cd " + host("in") + " && tar -cf ../other.tar top && touch -d 2001-01-01 ../other.tar");
  frame_.open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&frame_));
  EXPECT_TRUE(box.hasFocus() && box.selectedText() == "Select Tar File To Extract");
  QTest::keyClicks(&box, "pkg.tgz");
  QTest::keyClick(&box, Qt::Key_Return);
  EXPECT_TRUE(get("cmdUnTar").hasFocus() && where() == "C:\\pkg.tgz|C:\\pkg\\|Contents of Tar File:");
  for (const char* path : {"C:\\other.tar", "C:\\gone.tar", "C:\\in\\top", "C:\\other.tar"}) {
    box.setText(path);
    emit box.editingFinished();
    EXPECT_EQ(text("txtOutLocation"), "C:\\other\\");
  }
  get<QLineEdit>("txtOutLocation").setText("C:\\mine");
  click("cmdUnTar");  // lists it first
  EXPECT_TRUE(fs::exists(host("mine/top")) && !fs::exists(host("mine/usr")));
  output("cd " + host("in") + " && tar -cf ../other.tar usr");
  click("cmdUnTar");
  EXPECT_TRUE(fs::exists(host("mine/usr/lib")));
  QTest::keyClick(&frame_, Qt::Key_Escape);
  EXPECT_EQ(events_, "shown closed closed closed ");
}

TEST_F(UntarTest, ADragUnpacksOnceAndTheFilesStayUntilAnotherArchiveIsListed) {
  openPackage();
  const auto drag = [this](const std::vector<int>& rows, const std::string& log, std::ptrdiff_t folders) {
    log_.all.clear();
    tree().setCurrentIndex(at(rows));
    emit tree().dragBegun();
    EXPECT_TRUE(log_.all == log && scratchFolders() == folders) << log_.all;
    EXPECT_EQ(tree().findChild<QDrag*>(), nullptr);  // no button is down
  };
  const std::string unpacked = " Extracted file: C:\\pkg.tgz\n";
  drag({0}, unpacked, 1);
  drag({0}, "", 1);
  untick({0, 1});
  drag({0}, unpacked, 2);
  EXPECT_EQ(output("cd " + root_ + "/tmp && find -name lib -o -name app | wc -l"), "3\n");
  drag({0, 0}, unpacked, 3);  // the same member, offered by itself
  click("cmdRefresh");
  drag({1}, unpacked, 4);
  output("touch -d 2001-01-01 " + host("pkg.tgz"));
  drag({1}, "", 4);  // lists what has changed
  drag({1}, unpacked, 5);
  fs::copy(host("pkg.tgz"), host("other.tgz"));
  frame_.open("C:\\other.tgz");
  EXPECT_EQ(scratchFolders(), 0);
}

TEST_F(UntarTest, OverwriteDialogGivesEveryAnswer) {
  using enum archive::OverwriteAnswer;
  const auto answer = [](const char* name, bool folder) {
    onNextModal<archive::frmOverwriteFile>([=](archive::frmOverwriteFile& dialog) {
      const auto label = [&](const char* field) { return tests::the<QLabel>(dialog, field).text(); };
      EXPECT_EQ(label("lblPrompt"), folder ? "Overwrite Existing Folder?" : "Confirm File Overwrite?");
      EXPECT_EQ(tests::the(dialog, "lblFolderNote").isVisible(), folder);
      EXPECT_EQ(label("lblPath"), folder ? "C:\\pkg\\usr" : "C:\\pkg\\top");
      EXPECT_EQ(label("lblToReplace") + label("lblInTar"), "3 bytes7 bytes, 2006");
      *name == '\0' ? QTest::keyClick(&dialog, Qt::Key_Escape) : tests::press(dialog, name);
    });
    return archive::OverwriteDialogs(nullptr).ask(
        {folder ? "C:\\pkg\\usr" : "C:\\pkg\\top", folder, 3, std::nullopt, "7 bytes, 2006"});
  };
  for (const auto& [name, expected] :
       {std::pair("cmdYes", Yes), {"cmdAll", YesToAll}, {"cmdNo", No}, {"cmdCancel", Cancel}, {"", Cancel}})
    for (const bool folder : {false, true}) EXPECT_EQ(answer(name, folder), expected) << name;
  write("pkg/usr/x");
  openPackage();
  onNextModal<archive::frmOverwriteFile>([](auto& dialog) { tests::press(dialog, "cmdCancel"); });
  click("cmdUnTar");
  EXPECT_EQ(get<QLineEdit>("txtOutLocation").selectedText(), QString("C:\\pkg\\"));
}

TEST_F(UntarTest, PickersStartBesideTheArchiveAndANewFolderNeedsAProperName) {
  frame_.open();
  get<QLineEdit>("txtFileIn").setText("C:\\in\\a.tar");
  pickers_.answer = "C:\\pkg.tgz";
  click("cmdGetFile");
  EXPECT_TRUE(pickers_.asked.title + pickers_.asked.startFolder == "Select Tar FileC:\\in\\" &&
              pickers_.asked.filterIndex == 4);
  EXPECT_EQ(where(), "C:\\pkg.tgz|C:\\pkg\\|Contents of Tar File:");
  pickers_.answers = {"C:\\in", ""};
  for (int i = 0; i < 2; ++i) click("cmdSelectOut");
  EXPECT_EQ(pickers_.asked.title + text("txtOutLocation"), "Please select an output folder.C:\\in");
  pickers_.works = false;
  const auto type = [](const char* name, std::function<void()> then) {
    onNextModal<QInputDialog>([=](QInputDialog& box) {
      box.setTextValue(name);
      then();
      box.accept();
    });
  };
  onNextModal<archive::frmGetOutFolder>([&](archive::frmGetOutFolder& dialog) {
    EXPECT_EQ(dialog.GetDirListPath(), "C:\\");
    tests::the<platform::desktop::FolderList>(dialog, "dirList").setPath("C:\\in\\usr");
    type("a\"b", [&] { type("fresh", [] {}); });
    tests::press(dialog, "cmdNewFolder");
    tests::press(dialog, "cmdOK");
  });
  click("cmdSelectOut");
  EXPECT_TRUE(has(person_.told.back(), "Folder Name Error..|Folder name cannot contain any"));
  EXPECT_TRUE(text("txtOutLocation") == "C:\\in\\usr" && fs::is_directory(host("in/usr/fresh")));
  EXPECT_FALSE(archive::isFolderName("a\xEF\x80\xBA"));
}

TEST_F(UntarTest, QuickExtractionStaysShownAndItsCancelEndsTheProgram) {
  archive::frmQuickExtract quick(services_);
  quick.show();
  auto& bar = tests::the<QProgressBar>(quick, "ProgressBar1");
  bool moves = false;
  meanwhile_ = [&] { moves = moves || (bar.minimum() == 0 && bar.maximum() == 0); };
  EXPECT_EQ(quick.QuickExtract("C:\\pkg.tgz", "C:\\quick").end, runtime::JobEnd::Done);
  EXPECT_TRUE(quick.isVisible() && moves && bytes("quick/top") == "new");
  EXPECT_EQ(bar.value(), bar.maximum());
  cancelAtWork(tests::the<QPushButton>(quick, "cmdCancel"));
  const platform::desktop::Gate gate(busy_);
  const platform::Busy::Scope busy(busy_);
  EXPECT_EQ(quick.QuickExtract("C:\\pkg.tgz", "C:\\half").end, runtime::JobEnd::Stopped);
  EXPECT_TRUE(busy_.endRequested());
  EXPECT_TRUE(bar.value() == 1 && bar.maximum() > 2);  // the second member is at work
  EXPECT_TRUE(bytes("half/top") == "new" && !fs::exists(host("half/half")));
}

TEST_F(UntarTest, CancelWhileTarRunsLeavesTheFrameAndThePaneIsListedAgain) {
  cancelAtWork(get<QPushButton>("cmdCancel"));
  openPackage();
  click("cmdUnTar");
  EXPECT_EQ(events_ + std::to_string(window_.refreshes), "shown closed 1");
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
  EXPECT_EQ(frame_.focusWidget(), &get("txtFileIn"));
}

}  // namespace
