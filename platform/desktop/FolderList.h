#pragma once

#include <QListView>
#include <string>

#include "platform/Busy.h"
#include "platform/DriveTable.h"
#include "platform/desktop/FolderListModel.h"

namespace platform::desktop {

/// The folder list: the path down to the open folder, root first, each part indented below the one before,
/// and below them its subfolders. One row is highlighted. A click or Enter opens the highlighted folder,
/// Backspace its parent, and letters and arrows move the highlight; every other key is the window's. While a
/// job holds the gate what opens a folder is remembered, and the highlight stays. While it is not visible it
/// reads no subfolders.
class FolderList : public QListView {
  Q_OBJECT
  /// Whether hidden subfolders are in the list (they are): from the next reading on.
  Q_PROPERTY(bool hiddenShown READ hiddenShown WRITE setHiddenShown)

 public:
  explicit FolderList(QWidget* parent = nullptr);

  /// Both must outlive the list, which is empty until setPath.
  void setDrives(const DriveTable& drives, Busy& busy);

  /// The open folder: `C:\`, `C:\pkg`; empty before the first setPath that succeeded.
  std::string path() const { return model_->path(); }
  /// Opens a folder and highlights it. False when it is not there or cannot be read: the old path stays.
  bool setPath(const std::string& path);
  std::string highlighted() const;  ///< the path of the highlighted row; the open folder's when there is none
  void refresh();                   ///< reads the subfolders again; path and highlight stay
  bool hiddenShown() const { return model_->hiddenShown(); }

 public slots:
  void setHiddenShown(bool shown) { model_->setHiddenShown(shown); }

 signals:
  void changed();                         ///< another folder is open, by any means
  void refused(const std::string& path);  ///< somebody wanted to open it; it is not there or cannot be read
  void openFolderClicked();  ///< the left button was released on the folder that was open already
  void rightClicked();       ///< the right button was released over the list, or the menu key pressed

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void highlight(int row);
  void showHighlight();
  void click(const std::string& path);
  void openWhenFree(const std::string& path);
  bool busy() const { return busy_ != nullptr && busy_->held(); }

  FolderListModel* model_;
  Busy* busy_ = nullptr;
  std::string pressedPath_;     // where the left button went down
  bool openedByClick_ = false;  // the last click opened a folder and so moved the rows
};

}  // namespace platform::desktop
