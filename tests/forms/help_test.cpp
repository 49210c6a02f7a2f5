#include <sys/socket.h>
#include <sys/un.h>

#include "platform/desktop/Gate.h"
#include "platform/desktop/HelpWindow.h"
#include "shell/HelpPages.h"
#include "shell/ui/HelpKey.h"
#include "tests/forms/MainWindow.h"

namespace {

using platform::desktop::HelpFile;
using platform::desktop::HelpWindow;
using tests::the;

class Desktop : public QObject {
  Q_OBJECT
 public:
  QStringList opened;
  Q_INVOKABLE void open(const QUrl& url) { opened.append(url.toString()); }
};

std::string text(const QString& text) { return text.toStdString(); }

class HelpTest : public tests::MainTest {
 protected:
  static QStringList found(const QString& html, const char* pattern) {
    QStringList all;
    for (auto at = QRegularExpression(pattern).globalMatch(html); at.hasNext();)
      all.append(at.next().captured(1));
    return all;
  }
  static QString html(const QString& page) {
    QFile file(":/help/" + page);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << text(page);
    return QString::fromUtf8(file.readAll());
  }
  static void expectPlace(const QString& link, const QString& from) {
    const QString page = link.section('#', 0, 0);
    ASSERT_TRUE(QFile::exists(":/help/" + page)) << text(from + ": " + link);
    if (link.contains('#')) {
      EXPECT_TRUE(found(html(page), "<a name=\"([^\"]*)\"").contains(link.section('#', 1))) << text(link);
    }
  }
  static void showActive(QWidget& window) {
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &window; }));
  }
  std::string shownPage() {
    const std::string argument = kept();
    EXPECT_TRUE(argument.starts_with(root_ + "/prog/Pakrune.chm::/")) << argument;
    return argument.substr(argument.rfind('/') + 1);
  }

  QString file_ = QString::fromStdString(built("Pakrune.chm"));
};

TEST_F(HelpTest, EveryWindowLinkPictureAndAnchorLeadsSomewhere) {
  const HelpFile help(file_);
  ASSERT_EQ(text(help.problem()), "");
  const auto windows =
      QStringLiteral(
          "frmMain frmRightClick frmView frmShowFiles frmProperties frmPattern frmPermissions "
          "frmPreview frmPermsError frmOwner Dialog frmTar frameUntar frmGetOutFolder "
          "frmOverwriteFile frmQuickExtract frmNetloader frmWDXOptions frmPortErr frmOptions")
          .split(' ');
  for (const QString& window : windows) {
    const std::string_view page = shell::helpPage({text(window)});
    EXPECT_NE(page, shell::helpContents) << text(window);
    expectPlace(QString::fromUtf8(page.data(), static_cast<qsizetype>(page.size())), window);
  }
  const QStringList listed = found(html("index.html"), "href=\"([^\"]*)\"");
  for (const QString& page : QDir(":/help").entryList({"*.html"})) {
    EXPECT_TRUE(page == "index.html" || listed.contains(page)) << text(page);
    for (const QString& link : found(html(page), "<a href=\"([^\"]*)\"")) expectPlace(link, page);
    for (const QString& picture : found(html(page), "<img src=\"([^\"]*)\"")) expectPlace(picture, page);
  }
}

TEST_F(HelpTest, AFileThatIsDamagedIsToldOf) {
  QFile built(file_);
  ASSERT_TRUE(built.open(QIODevice::ReadOnly));
  const QByteArray good = built.readAll();
  QByteArray bad = good;
  bad[bad.size() / 2] = static_cast<char>(bad[bad.size() / 2] ^ 1);
  const QString path = QString::fromStdString(host("x.chm"));
  EXPECT_EQ(text(HelpFile(path).problem()), "The help file is missing:\n" + text(path));
  for (const QByteArray& content :
       {QByteArray(), QByteArray("<html>"), bad, good.chopped(100), good.chopped(32)}) {
    write("x.chm", content.toStdString());
    EXPECT_EQ(text(HelpFile(path).problem()), "This is no help file, or it is damaged:\n" + text(path));
  }
  write("x.chm", good.toStdString());
  EXPECT_EQ(text(HelpFile(path).problem()), "");
}

TEST_F(HelpTest, TheViewerShowsPagesAndFollowsLinksWithinTheFile) {
  const HelpFile help(file_);
  HelpWindow viewer(help);
  viewer.show();
  auto& page = the<QTextBrowser>(viewer, "txtPage");
  auto& list = the<QListWidget>(viewer, "listContents");
  const auto place = [&] { return text(page.source().toString()) + " " + text(list.currentItem()->text()); };
  EXPECT_FALSE(the<QAction>(viewer, "mnuBack").isEnabled());
  const std::pair<const char*, const char*> cases[] = {
      {"packing.html", "qrc:/help/packing.html Packing an archive"},
      {"/archives.html#overwrite", "qrc:/help/archives.html#overwrite Inspecting and extracting an archive"},
      {"gone.html", "qrc:/help/index.html Contents"},
      {"help.css", "qrc:/help/index.html Contents"},
      {"", "qrc:/help/index.html Contents"}};
  for (const auto& [wanted, shown] : cases) {
    viewer.showPage(wanted);
    EXPECT_EQ(place(), shown);
  }
  emit page.anchorClicked(QUrl("usr8.html"));
  EXPECT_EQ(place(), "qrc:/help/usr8.html The usr8 folder");
  the<QAction>(viewer, "mnuBack").trigger();
  EXPECT_EQ(place(), "qrc:/help/index.html Contents");
  Desktop desktop;
  for (const char* scheme : {"https", "file"}) QDesktopServices::setUrlHandler(scheme, &desktop, "open");
  for (const char* link : {"file:///etc/passwd", "https://example.org/a"})
    emit page.anchorClicked(QUrl(link));
  for (const char* scheme : {"https", "file"}) QDesktopServices::unsetUrlHandler(scheme);
  EXPECT_EQ(text(desktop.opened.join(' ')), "https://example.org/a");
  EXPECT_EQ(place(), "qrc:/help/index.html Contents");
  tests::checkTexts(viewer);
}

TEST_F(HelpTest, TheViewerFindsZoomsAndClosesByKeys) {
  const HelpFile help(file_);
  HelpWindow viewer(help);
  viewer.showPage("keys.html");
  showActive(viewer);
  auto& page = the<QTextBrowser>(viewer, "txtPage");
  const double size = page.font().pointSizeF();
  for (int i = 0; i < 2; ++i) QTest::keyClick(&page, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_EQ(page.font().pointSizeF(), size + 2);
  QTest::keyClick(&page, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(page.font().pointSizeF(), size);

  QTest::keyClick(&page, Qt::Key_F, Qt::ControlModifier);
  auto& wanted = the<QLineEdit>(viewer, "txtFind");
  EXPECT_TRUE(wanted.hasFocus());
  tests::checkTexts(viewer);
  QTest::keyClicks(&wanted, "escape");
  const auto placeAfter = [&](Qt::Key key, Qt::KeyboardModifiers keys = {}) {
    QTest::keyClick(&wanted, key, keys);
    EXPECT_EQ(text(page.textCursor().selectedText()), "Escape");
    return page.textCursor().position();
  };
  const int first = placeAfter(Qt::Key_Return);
  const int second = placeAfter(Qt::Key_F3);
  EXPECT_GT(second, first);
  EXPECT_EQ(placeAfter(Qt::Key_F3, Qt::ShiftModifier), first);
  EXPECT_GT(placeAfter(Qt::Key_F3, Qt::ShiftModifier), second) << "from the end";
  EXPECT_EQ(placeAfter(Qt::Key_F3), first) << "from the start";
  QTest::keyClicks(&wanted, "xyzzy");
  tests::press(viewer, "cmdNext");
  EXPECT_EQ(text(the<QLabel>(viewer, "lblFound").text()), "Not found on this page");
  EXPECT_EQ(page.textCursor().position(), first);
  QTest::keyClick(&wanted, Qt::Key_Escape);
  EXPECT_TRUE(viewer.isVisible() && page.hasFocus());
  QTest::keyClick(&page, Qt::Key_Escape);
  EXPECT_FALSE(viewer.isVisible());
}

TEST_F(HelpTest, TheKeyOpensThePageOfTheWindow) {
  std::ofstream(root_ + "/prog/Pakrune.chm") << "";
  tool("hh.exe", keep("%s \"$1\""));
  const shell::HelpKey key(program_object_);
  load({"-d", host("pkg")});
  action("mnuContent")->trigger();
  EXPECT_EQ(shownPage(), "browsing.html");
  QDialog dialog(&window_);
  dialog.setObjectName("frmOwner");
  QLineEdit box(&dialog);
  QMessageBox message(&dialog);
  for (QWidget* pressed : {static_cast<QWidget*>(&box), static_cast<QWidget*>(&message)}) {
    showActive(*pressed->window());
    QTest::keyClick(pressed, Qt::Key_F1);
    EXPECT_EQ(shownPage(), "owner.html");
  }
  find<QPushButton>("cmdExtract")->click();
  QMessageBox above(&window_);
  showActive(above);
  QTest::keyClick(&above, Qt::Key_F1);
  EXPECT_EQ(shownPage(), "archives.html");
  shell::openHelp(program_object_, nullptr);
  EXPECT_EQ(shownPage(), "index.html");
}

TEST_F(HelpTest, OtherKeysAndAJobOpenNothing) {
  shell::HelpKey key(program_object_);
  const platform::desktop::Gate gate(busy_);
  const auto failures = [this] { return program_object_.log.text().size(); };  // there is no viewer
  QDialog early, late;
  early.show();
  const platform::Busy::Scope job(busy_);
  late.show();
  const auto before = failures();
  QTest::keyClick(&early, Qt::Key_F1);
  QTest::keyClick(&late, Qt::Key_F1, Qt::ShiftModifier);
  QKeyEvent held(QEvent::KeyPress, Qt::Key_F1, {}, {}, true);
  QApplication::sendEvent(&late, &held);
  EXPECT_EQ(failures(), before);
  QTest::keyClick(&late, Qt::Key_F1);
  EXPECT_TRUE(testworld::has(program_object_.log.text(), " Unable to open: " + program_ + "Pakrune.chm"));
}

bool answers(const QString& folder) {
  const QStringList names = QDir(folder).entryList({"pakrune-help-*"}, QDir::System);
  if (names.isEmpty()) return false;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = text(folder + '/' + names.constFirst());
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int end = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool connected = connect(end, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(end);
  return connected;
}

TEST_F(HelpTest, OneViewerServesOneFileAndTheNextReplacesADeadOne) {
  const QTemporaryDir folder;
  const auto listening = [&] { return answers(folder.path()); };
  const auto start = [&](QProcess& viewer, const QString& argument) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_RUNTIME_DIR", folder.path());
    viewer.setProcessEnvironment(environment);
    viewer.start(QCoreApplication::applicationDirPath() + "/../bin/hh.exe", {argument});
  };
  for (int round = 0; round < 2; ++round) {
    QProcess first, second;
    start(first, file_);
    ASSERT_TRUE(QTest::qWaitFor(listening, 20000));
    start(second, file_ + "::/packing.html");
    EXPECT_TRUE(second.waitForFinished() && second.exitStatus() == QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
    first.kill();  // its socket stays
    first.waitForFinished();
    EXPECT_EQ(QDir(folder.path()).entryList({"pakrune-help-*"}, QDir::System).size(), 1);
    EXPECT_FALSE(listening());
  }
}

}  // namespace

#include "help_test.moc"
