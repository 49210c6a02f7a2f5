#include "browser/ui/PaneSelection.h"

#include "platform/desktop/Text.h"
#include "runtime/Slashes.h"

namespace browser {

using platform::desktop::toControl;

PaneSelection::PaneSelection(runtime::Services services, runtime::Selection& selection,
                             const platform::desktop::FolderList& folders, PaneViews& pane,
                             const DirPaneModel& model, QLineEdit& summary, QObject* parent)
    : QObject(parent),
      services_(services),
      selection_(selection),
      folders_(folders),
      pane_(pane),
      model_(model),
      summary_(summary) {
  connect(&summary_, &QLineEdit::textChanged, this, [this](const QString& text) {
    const std::string inner = platform::desktop::fromControl(text);
    summary_.setToolTip(platform::desktop::toPlainTip(inner));
    summary_.setAccessibleDescription(platform::desktop::toShown(inner));  // else the tip with its markup
  });
}

std::string PaneSelection::folder() const { return runtime::withTrailingBackslash(folders_.path()); }

void PaneSelection::read() {
  if (loading_ || locked_) return;
  std::vector<SelectedEntry> entries;
  for (const int row : pane_.selectedRows()) {
    const PaneRow& selected = model_.rows()[static_cast<std::size_t>(row)];
    entries.push_back({selected.name, !selected.isFile});
  }
  take(entries);
}

void PaneSelection::take(const std::vector<SelectedEntry>& entries) {
  show(rebuildSelection(selection_, services_.system.files, folder(), entries));
}

void PaneSelection::reset() {
  selection_ = {};
  showText(folder() + "*", false);
}

void PaneSelection::show(const SelectionCounts& counts) {
  showText(summaryText(counts), counts.files > 0 && counts.folders == 0);
}

void PaneSelection::showText(const std::string& text, bool convertible) {
  summary_.setText(toControl(text));
  summary_.home(false);
  convertible_ = convertible;
  emit changed();
}

std::vector<std::string> PaneSelection::names() const {
  std::vector<std::string> names;
  for (const int row : pane_.selectedRows())
    names.push_back(model_.rows()[static_cast<std::size_t>(row)].name);
  return names;
}

bool PaneSelection::add(const std::string& name) {
  const std::vector<int> rows = model_.rowsOf({name});
  pane_.selectRows(rows);
  return !rows.empty();
}

void PaneSelection::selectAll() {
  {
    const Lock lock(*this);
    summary_.clear();
    pane_.view().selectAll();
  }
  read();
}

}  // namespace browser
