#include "platform/desktop/HelpWindow.h"

#include <QAction>
#include <QBoxLayout>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>

namespace platform::desktop {
namespace {

constexpr QSize startSize(980, 720);
constexpr int contentsWidth = 230;
constexpr int widestPicture = 640;
constexpr int pageMargin = 16;
constexpr int pageRole = Qt::UserRole;

bool isWeb(const QUrl& link) {
  return link.scheme() == QLatin1String("http") || link.scheme() == QLatin1String("https");
}

/// Makes wide pictures smaller, and smoothly so, which a document's own way is not.
class PageView : public QTextBrowser {
  QVariant loadResource(int type, const QUrl& url) override {
    const QVariant loaded = QTextBrowser::loadResource(type, url);
    if (type != QTextDocument::ImageResource) return loaded;
    QImage picture = QImage::fromData(loaded.toByteArray());
    if (picture.width() <= widestPicture) return loaded;
    picture = picture.scaledToWidth(qRound(widestPicture * devicePixelRatioF()), Qt::SmoothTransformation);
    picture.setDevicePixelRatio(devicePixelRatioF());
    return picture;
  }
};

template <typename Control>
Control* named(Control* control, const char* name, const char* accessibleName) {
  control->setObjectName(QLatin1String(name));
  control->setAccessibleName(QLatin1String(accessibleName));
  return control;
}

}  // namespace

HelpWindow::HelpWindow(const HelpFile& file) : file_(file) {
  setObjectName(QStringLiteral("frmHelp"));
  setWindowTitle(QStringLiteral("Pakrune Help"));
  addPanes();
  addTools();
  addKeys();
  resize(startSize.boundedTo(screen()->availableSize() * 9 / 10));
  page_->setFocus();
}

void HelpWindow::addPanes() {
  contents_ = named(new QListWidget, "listContents", "Contents");
  for (const HelpFile::Entry& entry : file_.contents()) {
    auto* const item = new QListWidgetItem(entry.title, contents_);
    item->setData(pageRole, entry.page);
  }
  page_ = named(new PageView, "txtPage", "Page");
  page_->setOpenLinks(false);
  page_->document()->setDocumentMargin(pageMargin);
  connect(page_, &QTextBrowser::anchorClicked, this, &HelpWindow::follow);
  connect(page_, &QTextBrowser::sourceChanged, this, &HelpWindow::pageShown);
  const auto open = [this](const QListWidgetItem* item) { showPage(item->data(pageRole).toString()); };
  connect(contents_, &QListWidget::itemClicked, this, open);
  connect(contents_, &QListWidget::itemActivated, this, open);
  auto* const right = new QWidget;
  auto* const column = new QVBoxLayout(right);
  column->setContentsMargins({});
  column->addWidget(page_);
  column->addWidget(newFindBar());
  auto* const panes = new QSplitter;
  panes->addWidget(contents_);
  panes->addWidget(right);
  panes->setStretchFactor(1, 1);
  panes->setSizes({contentsWidth, startSize.width() - contentsWidth});
  setCentralWidget(panes);
}

QWidget* HelpWindow::newFindBar() {
  findBar_ = new QWidget;
  findBar_->setObjectName(QStringLiteral("frameFind"));
  findText_ = named(new QLineEdit, "txtFind", "Find in page");
  auto* const next = named(new QPushButton(QStringLiteral("Next")), "cmdNext", "Next");
  auto* const previous = named(new QPushButton(QStringLiteral("Previous")), "cmdPrevious", "Previous");
  found_ = named(new QLabel, "lblFound", "");
  found_->setTextFormat(Qt::PlainText);
  auto* const label = new QLabel(QStringLiteral("Find in page:"));
  label->setBuddy(findText_);
  auto* const row = new QHBoxLayout(findBar_);
  for (QWidget* widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(findText_),
                          static_cast<QWidget*>(next), static_cast<QWidget*>(previous)})
    row->addWidget(widget);
  row->addWidget(found_, 1);
  findBar_->hide();
  connect(findText_, &QLineEdit::returnPressed, this, [this] { find({}); });
  connect(findText_, &QLineEdit::textEdited, found_, &QLabel::clear);
  connect(next, &QPushButton::clicked, this, [this] { find({}); });
  connect(previous, &QPushButton::clicked, this, [this] { find(QTextDocument::FindBackward); });
  return findBar_;
}

void HelpWindow::addTools() {
  QToolBar* const bar = addToolBar(QStringLiteral("Help"));
  bar->setObjectName(QStringLiteral("barHelp"));
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const auto add = [&](const char* name, const char* text, QStyle::StandardPixmap picture,
                       const QKeySequence& keys, auto deed) {
    QAction* const action = bar->addAction(style()->standardIcon(picture), QLatin1String(text));
    action->setObjectName(QLatin1String(name));
    action->setShortcut(keys);
    action->setToolTip(
        QStringLiteral("%1 (%2)").arg(action->text(), keys.toString(QKeySequence::NativeText)));
    connect(action, &QAction::triggered, this, deed);
    return action;
  };
  QAction* const back =
      add("mnuBack", "Back", QStyle::SP_ArrowBack, Qt::ALT | Qt::Key_Left, [this] { page_->backward(); });
  QAction* const forward = add("mnuForward", "Forward", QStyle::SP_ArrowForward, Qt::ALT | Qt::Key_Right,
                               [this] { page_->forward(); });
  add("mnuHome", "Home", QStyle::SP_DirHomeIcon, Qt::ALT | Qt::Key_Home, [this] { showPage({}); });
  add("mnuFind", "Find", QStyle::SP_FileDialogContentsView, Qt::CTRL | Qt::Key_F, [this] { openFind(); });
  for (QAction* const action : {back, forward}) action->setEnabled(false);
  connect(page_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  connect(page_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
}

void HelpWindow::addKeys() {
  const auto add = [this](const QList<QKeySequence>& keys, auto deed) {
    auto* const action = new QAction(this);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, deed);
    addAction(action);
  };
  add({Qt::Key_F3}, [this] { find({}); });
  add({Qt::SHIFT | Qt::Key_F3}, [this] { find(QTextDocument::FindBackward); });
  add({Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal}, [this] { page_->zoomIn(); });
  add({Qt::CTRL | Qt::Key_Minus}, [this] { page_->zoomOut(); });
  add({Qt::CTRL | Qt::Key_0}, [this, font = page_->font()] { page_->setFont(font); });
  add({Qt::Key_Escape}, [this] { escape(); });
}

void HelpWindow::showPage(const QString& page) { page_->setSource(file_.urlOf(page)); }

void HelpWindow::comeToFront() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void HelpWindow::follow(const QUrl& link) {
  if (isWeb(link)) QDesktopServices::openUrl(link);
  const QUrl target = page_->source().resolved(link);
  if (target.scheme() == QLatin1String("qrc")) page_->setSource(target);
}

/// Marks the page in the contents.
void HelpWindow::pageShown(const QUrl& url) {
  for (int row = 0; row < contents_->count(); ++row)
    if (file_.urlOf(contents_->item(row)->data(pageRole).toString()) == url.adjusted(QUrl::RemoveFragment))
      contents_->setCurrentRow(row);
}

void HelpWindow::openFind() {
  findBar_->show();
  findText_->setFocus();
  findText_->selectAll();
}

/// Goes on from the other end where there is none before the end.
void HelpWindow::find(QTextDocument::FindFlags direction) {
  const QString text = findText_->text();
  if (text.isEmpty()) return openFind();
  bool found = page_->find(text, direction);
  if (!found) {
    const QTextCursor here = page_->textCursor();
    page_->moveCursor(direction.testFlag(QTextDocument::FindBackward) ? QTextCursor::End
                                                                      : QTextCursor::Start);
    found = page_->find(text, direction);
    if (!found) page_->setTextCursor(here);
  }
  found_->setText(found ? QString() : QStringLiteral("Not found on this page"));
}

void HelpWindow::escape() {
  if (!findBar_->isVisible()) {
    close();
    return;
  }
  findBar_->hide();
  page_->setFocus();
}

}  // namespace platform::desktop
