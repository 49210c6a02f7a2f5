#include "browser/ui/PaneListing.h"

#include <algorithm>
#include <utility>

namespace browser {
namespace {

constexpr int modeColumn = 2;   // as columns are counted for sorting
constexpr int showEvery = 100;  // milliseconds

}  // namespace

PaneListing::Shown::Shown(PaneViews& pane) : pane_(pane), mine_(!pane.listing()) {
  if (mine_) pane_.setListing(true);
}

PaneListing::Shown::~Shown() {
  if (mine_) pane_.setListing(false);
}

PaneListing::PaneListing(runtime::Services services, platform::desktop::FolderList& folders, PaneViews& pane,
                         DirPaneModel& model, PaneSelection& selection, std::function<ListingChoice()> choice,
                         QObject* parent)
    : QObject(parent),
      services_(services),
      folders_(folders),
      pane_(pane),
      model_(model),
      selection_(selection),
      choice_(std::move(choice)) {
  pane_.setViewMode(viewMode_);
}

void PaneListing::list() {
  const Shown shown(pane_);
  emit begins();
  rowsAwaited_ = false;
  modesAwaited_.reset();
  FolderListing(services_, folders_.path(), choice_(), listener()).run();
  showModes();
  emit ended();
}

void PaneListing::listRows() {
  emit begins();
  rowsAwaited_ = false;
  modesAwaited_.emplace(services_, folders_.path(), choice_(), listener()).listRows();
}

void PaneListing::readModes() {
  if (rowsAwaited_) return list();
  if (!modesAwaited_) return;
  keepingSelection([this] {
    const Shown shown(pane_);
    modesAwaited_->readModes();
    modesAwaited_.reset();
    showModes();
    emit ended();
  });
}

void PaneListing::listKeeping() {
  keepingSelection([this] {
    folders_.refresh();
    list();
    services_.user.letEventsRun();
  });
}

void PaneListing::showRows(std::vector<PaneRow> rows) {
  keepingSelection([this, &rows] { model_.setRows(std::move(rows)); });
}

void PaneListing::awaitListing() {
  rowsAwaited_ = true;
  modesAwaited_.reset();
  pane_.setNotice({});
  model_.setRows({});
  selection_.reset();
}

void PaneListing::keepingSelection(const std::function<void()>& list) {
  selection_.read();
  const std::vector<std::string> selected = selection_.names();
  const int row = pane_.currentRow();
  const std::vector<std::string> candidates = model_.nearestFirst(row);
  const std::vector<std::string> atTop = model_.nearestFirst(pane_.topRow());
  const PaneViews::Scrolled scrolled(pane_);
  const auto firstOf = [this](const std::vector<std::string>& names, int otherwise) {
    const std::vector<int> rows = model_.rowsOf(names);
    return rows.empty() ? otherwise : rows.front();
  };
  list();
  {
    const PaneSelection::Lock lock(selection_);
    pane_.selectRows(model_.rowsOf(selected));
    const int current = firstOf(candidates, std::min(row, model_.rowCount() - 1));
    if (current >= 0) pane_.makeCurrent(current);
    scrolled.restore(firstOf(atTop, -1));
  }
  selection_.read();
}

void PaneListing::rowsFound(std::vector<PaneRow> rows) {
  pane_.setViewMode(viewMode_);
  pane_.setNotice({});
  model_.setRows(std::move(rows));
  sinceShown_.start();
}

void PaneListing::unreadable(const std::string& why) {
  pane_.setNotice("This folder cannot be read: " + why);
}

void PaneListing::modesFound(std::size_t first, std::vector<LsEntry> entries) {
  model_.setModes(first, std::move(entries));
  if (sinceShown_.elapsed() < showEvery) return;
  pane_.view().viewport()->update();
  sinceShown_.start();
}

/// All other columns were sorted when the rows came. A view looks at each row whose change it is told of,
/// however many are in sight: so it is told once, of one column, and painted anew for the emblems.
void PaneListing::showModes() {
  model_.showModes();
  pane_.view().viewport()->update();
  if (model_.order().sortColumn == modeColumn) model_.sortBy(model_.order());
}

}  // namespace browser
