#include "browser/ui/PaneRefresh.h"

#include <QApplication>
#include <QDialog>
#include <QSocketNotifier>
#include <algorithm>
#include <set>
#include <utility>

namespace browser {
namespace {

constexpr std::chrono::milliseconds tick{10};
constexpr std::chrono::milliseconds tryAgain{200};  // where something stands in the way

bool dialogOpen() {
  const QWidgetList windows = QApplication::topLevelWidgets();
  return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
    return window->isVisible() && qobject_cast<const QDialog*>(window) != nullptr;
  });
}

std::set<std::string> foldersOf(const std::vector<PaneRow>& rows) {
  std::set<std::string> names;
  for (const PaneRow& row : rows)
    if (!row.isFile) names.insert(row.name);
  return names;
}

}  // namespace

PaneRefresh::PaneRefresh(runtime::Services services, platform::desktop::FolderList& folders, PaneViews& pane,
                         DirPaneModel& model, PaneSelection& selection, PaneListing& listing,
                         std::function<ListingChoice()> choice, QObject* parent)
    : QObject(parent),
      services_(services),
      folders_(folders),
      pane_(pane),
      model_(model),
      selection_(selection),
      listing_(listing),
      choice_(std::move(choice)) {
  due_.setSingleShot(true);
  ready_.setInterval(tick);
  connect(&due_, &QTimer::timeout, this, &PaneRefresh::look);
  connect(&ready_, &QTimer::timeout, this, &PaneRefresh::takeFound);
  connect(&listing_, &PaneListing::begins, this, &PaneRefresh::listingBegins);
  connect(&listing_, &PaneListing::ended, this, &PaneRefresh::listingEnds);
  if (watch_.descriptor() < 0) return;
  const auto* const heard = new QSocketNotifier(watch_.descriptor(), QSocketNotifier::Read, this);
  connect(heard, &QSocketNotifier::activated, this, &PaneRefresh::folderChanged);
}

void PaneRefresh::listingBegins() {
  listingBegan_ = RefreshPace::Clock::now();
  forgetChanges();
  quiet_.reset();
  ready_.stop();
  due_.stop();
}

/// A look begins, which covers them. The folder is followed anew: one of the same name may have taken its
/// place.
void PaneRefresh::forgetChanges() {
  watch_.follow(services_.system.drives.toHost(folders_.path()).value_or(std::string()));
  pace_.forget();
}

void PaneRefresh::listingEnds() {
  const auto now = RefreshPace::Clock::now();
  pace_.rest(now, now - listingBegan_);
}

void PaneRefresh::folderChanged() {
  if (!watch_.heard()) return;
  pace_.changed(RefreshPace::Clock::now());
  planLook();
}

void PaneRefresh::planLook() {
  const auto due = pace_.due();
  if (!due || quiet_) return;
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - RefreshPace::Clock::now());
  due_.start(std::max(wait, std::chrono::milliseconds(0)));
}

bool PaneRefresh::mayAct() const {
  return !services_.system.busy.held() && listing_.complete() && !pane_.editing() && !dialogOpen() &&
         QApplication::activePopupWidget() == nullptr && QApplication::mouseButtons() == Qt::NoButton;
}

void PaneRefresh::look() {
  if (!mayAct()) return due_.start(tryAgain);
  forgetChanges();
  quiet_.emplace(services_.system.drives, folders_.path(), choice_());
  ready_.start();
}

void PaneRefresh::takeFound() {
  std::optional<QuietListing::Found> found = quiet_->take();
  if (!found) return;
  ready_.stop();
  quiet_.reset();
  const auto now = RefreshPace::Clock::now();
  pace_.rest(now, found->took);
  if (found->folder != folders_.path()) return;
  if (!mayAct())
    pace_.changed(now);
  else
    show(std::move(*found));
  planLook();
}

void PaneRefresh::show(QuietListing::Found found) {
  if (found.there) return showRows(std::move(found.rows));
  const std::string root = folders_.path().substr(0, 2) + "\\";
  if (services_.system.files.readProblem(root) == 0) emit folderGone();
}

bool PaneRefresh::updateRows(std::vector<PaneRow>& rows) {
  const std::vector<std::string> candidates = model_.nearestFirst(pane_.currentRow());
  const PaneViews::Place place(pane_);
  if (!model_.updateRows(rows)) return false;
  const std::vector<int> current = model_.rowsOf(candidates);
  if (!current.empty()) pane_.makeCurrent(current.front());
  return true;
}

void PaneRefresh::showRows(std::vector<PaneRow> rows) {
  const std::vector<std::string> selected = selection_.names();
  const std::set<std::string> folders = foldersOf(model_.rows());
  {
    const PaneSelection::Lock lock(selection_);
    pane_.setNotice({});
    if (!updateRows(rows)) listing_.showRows(std::move(rows));
  }
  if (selection_.names() != selected) selection_.read();
  if (foldersOf(model_.rows()) != folders) folders_.refresh();
}

}  // namespace browser
