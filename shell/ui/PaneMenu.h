#pragma once

#include <QPoint>
#include <QPointer>

#include "browser/ui/frmRightClick.h"

namespace shell {

class frmMain;

/// The file pane's pop-up menu: which entries can be used, and what they do.
class PaneMenu {
 public:
  explicit PaneMenu(frmMain& window) : window_(window) {}  ///< lent; it owns this

  void open(QPoint at);  ///< global pixels; an open one closes

 private:
  std::vector<platform::desktop::Action> rows();
  void download(void (frmMain::*how)());
  void openContainingFolder();
  void showProperties();

  frmMain& window_;
  QPointer<browser::frmRightClick> menu_;
};

}  // namespace shell
