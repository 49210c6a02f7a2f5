#pragma once

#include <QListView>
#include <QStackedWidget>
#include <QTreeView>
#include <string>
#include <vector>

#include "browser/ui/DirPaneModel.h"
#include "platform/Busy.h"

namespace browser {

/// The file pane's two views, one above the other, over one model and one selection: the details in a tree
/// view named DirPane, lists and icons in a list view named DirPaneIcons.
class PaneViews : public QStackedWidget {
  Q_OBJECT

 public:
  explicit PaneViews(QWidget* parent = nullptr);
  void setModel(DirPaneModel& model);  ///< must outlive the views
  /// While a job holds the gate the views take nothing but what may open a folder: a double click, Enter and
  /// Backspace, which are told of as ever.
  void setBusy(const platform::Busy& busy);
  bool busy() const { return busy_ != nullptr && busy_->held(); }

  /// While it is being listed the pane takes no input and does not scroll, except that Backspace is told of.
  /// Its focus waits here, so that a key meant for the pane reaches no button.
  void setListing(bool listing);
  bool listing() const { return !details_->isEnabled(); }

  void setNotice(const std::string& text);  ///< shown where there are no rows; empty: nothing
  const QString& notice() const { return notice_; }

  bool editing() const;  ///< a box stands over a row, for its name

  int topRow() const;  ///< the first one in sight; -1: nothing is scrolled

  /// Where a view was scrolled to, while its rows are replaced.
  class Scrolled {
   public:
    explicit Scrolled(const PaneViews& pane);
    /// With this row as the first in sight, unless it is -1. Nothing where another view shows now.
    void restore(int top) const;

   private:
    const PaneViews& pane_;
    QAbstractItemView& view_;
    QPoint place_;
  };

  /// What is shown at the top is there again at the end, though rows came and went above it.
  class Place {
   public:
    explicit Place(PaneViews& pane);
    ~Place();
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

   private:
    Scrolled scrolled_;
    QPersistentModelIndex top_;
  };

  void fitNames();             ///< after its width or that of a column has changed
  void setViewMode(int mode);  ///< 0 icons, 2 list, 3 details
  QAbstractItemView& view() const;
  int currentRow() const;  ///< -1: none
  int chosenRow() const;   ///< the current one, where it is selected, otherwise the first that is; -1: none
  std::vector<int> selectedRows() const;          ///< in list order
  void selectRows(const std::vector<int>& rows);  ///< adds them, as one change
  void makeCurrent(int row);                      ///< selected or not; nothing scrolls
  void goTo(int row);   ///< it becomes the current one, selected or not, and is scrolled into view
  void goToSelected();  ///< the first of them becomes the current row and is scrolled into view
  void clearCurrentRow();
  void clearSelected();  ///< no row is selected or the current one

 protected:
  void keyReleaseEvent(QKeyEvent* event) override;

 signals:
  void selectionChanged();  ///< once for a change, whatever made it
  void rowDoubleClicked(int row);
  void keyReleased(int key);  ///< one that was pressed in the pane, too
  /// At the end of a click, with its place in global pixels; row -1: empty space.
  void mouseReleased(int row, Qt::MouseButton button, QPoint at);
  void menuKeyPressed(QPoint at);                  ///< global pixels, at the current row's text
  void sideButtonPressed(Qt::MouseButton button);  ///< the mouse's Back or Forward
  void columnClicked(int column);                  ///< 1 to 4
  void dragBegun();                                ///< the selected rows are to leave the pane

 private:
  void buildDetails();
  void buildIcons();

  const platform::Busy* busy_ = nullptr;
  QString notice_;
  QTreeView* details_;
  QListView* icons_;
};

}  // namespace browser
