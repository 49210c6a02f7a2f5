#pragma once

#include <QDialog>
#include <memory>

#include "perms/PermissionJob.h"
#include "perms/ui/ChangesModel.h"

namespace Ui {
class frmPreview;
}

namespace perms {

/// Lists what a run would change. Changes nothing.
class frmPreview : public QDialog {
  Q_OBJECT

 public:
  explicit frmPreview(const runtime::Services& services, QWidget* parent = nullptr);
  ~frmPreview() override;

  /// Shows the window and looks. Closed meanwhile, or where nothing could be found out, it ends hidden.
  void fill(const PermissionItems& items, const PermissionChoice& choice);

  void reject() override { cmdClose_Click(); }  ///< Escape and the close box

 private:
  void cmdClose_Click();
  void txtNarrow_Change();
  void showCount();

  std::unique_ptr<Ui::frmPreview> ui_;
  runtime::Services services_;
  ChangesModel* model_;  // a child
  std::string counted_;
  bool looking_ = false;
};

}  // namespace perms
