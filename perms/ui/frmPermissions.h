#pragma once

#include <QCheckBox>
#include <QDialog>
#include <array>
#include <memory>

#include "perms/PermissionJob.h"
#include "perms/ShownModes.h"
#include "platform/desktop/Actions.h"

namespace Ui {
class frmPermissions;
}

namespace perms {

/// "Set Permissions": the mode for some items, taken when the dialog is made. It is filled by initSetup() and
/// unloads at the end of its run. While Ctrl is held, a click on a box goes for the other classes too.
class frmPermissions : public QDialog {
  Q_OBJECT

 public:
  frmPermissions(const runtime::Services& services, PermissionItems items, QWidget* parent = nullptr);
  ~frmPermissions() override;

  /// Shows the dialog and fills it from the stored preferences or the modes on disk. A Cancel meanwhile
  /// leaves it hidden.
  void initSetup();

  void reject() override { cmdCancel_Click(); }  ///< Escape and the close box

 signals:
  void runBegun();
  void ran(const perms::PermissionUndo& undo);  ///< how the run is taken back

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void wireActions();
  void keepSize();
  void fillExecutables();
  void showModes(const ShownModes& shown);
  void setBox(std::size_t box, Box state);
  void showMixed(std::size_t box, bool mixed);
  void setRunning(bool running);
  PermissionChoice choice() const;
  void box_Click(std::size_t box);
  void listExecutables_Click();
  void cmdPreview_Click();
  void cmdSetP_Click();
  void cmdCancel_Click();

  std::unique_ptr<Ui::frmPermissions> ui_;
  runtime::Services services_;
  PermissionItems items_;
  std::array<QCheckBox*, modeBoxes> boxes_;
  bool ctrlDown_ = false;
  bool running_ = false;                               // filling, or setting
  platform::desktop::ActionTable* actions_ = nullptr;  // a child
};

}  // namespace perms
