#pragma once

#include <QLineEdit>
#include <QObject>
#include <string>
#include <utility>
#include <vector>

#include "browser/SelectedRows.h"
#include "browser/ui/PaneViews.h"
#include "platform/desktop/FolderList.h"
#include "runtime/Selection.h"
#include "runtime/Services.h"

namespace browser {

/// The program's selection list and its summary follow the rows that are selected in the file pane.
class PaneSelection : public QObject {
  Q_OBJECT

 public:
  /// The program changes the selection in several steps; it is read once, afterwards.
  class Lock {
   public:
    explicit Lock(PaneSelection& owner) : owner_(owner), before_(std::exchange(owner.locked_, true)) {}
    ~Lock() { owner_.locked_ = before_; }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    PaneSelection& owner_;
    bool before_;
  };

  /// All are lent; `summary` is the box that tells what is selected.
  PaneSelection(runtime::Services services, runtime::Selection& selection,
                const platform::desktop::FolderList& folders, PaneViews& pane, const DirPaneModel& model,
                QLineEdit& summary, QObject* parent);

  void setLoading(bool loading) { loading_ = loading; }  ///< while it is on nothing is read
  void read();                                           ///< getDirPaneSelected
  void reset();  ///< nothing is selected; the summary names all of the folder
  void take(
      const std::vector<SelectedEntry>& entries);  ///< what another list has selected in the open folder
  std::vector<std::string> names() const;          ///< of the selected rows, in list order
  std::size_t count() const { return selection_.selectedCount(); }
  bool convertible() const { return convertible_; }  ///< its line ends: files, and no folder
  bool add(const std::string& name);  ///< selects the first row of that exact name; false: none
  void selectAll();

 signals:
  void changed();  ///< after the selection list was rebuilt or reset

 private:
  std::string folder() const;
  void show(const SelectionCounts& counts);
  void showText(const std::string& text, bool convertible);

  runtime::Services services_;
  runtime::Selection& selection_;
  const platform::desktop::FolderList& folders_;
  PaneViews& pane_;
  const DirPaneModel& model_;
  QLineEdit& summary_;
  bool loading_ = false;
  bool locked_ = false;
  bool convertible_ = false;
};

}  // namespace browser
