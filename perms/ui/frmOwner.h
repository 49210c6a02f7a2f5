#pragma once

#include <QDialog>
#include <memory>

#include "perms/OwnershipJob.h"
#include "platform/desktop/Actions.h"

namespace Ui {
class frmOwner;
}

namespace perms {

/// "Set Owner": one of the terminal's accounts for the items. Modal; made for one request.
class frmOwner : public QDialog {
  Q_OBJECT

 public:
  frmOwner(const runtime::Services& services, OwnershipItems items, QWidget* parent = nullptr);
  ~frmOwner() override;

  void reject() override { cmdCancel_Click(); }  ///< Escape and the close box

 private:
  void cmdSetOwner_Click();
  void cmdCancel_Click();

  std::unique_ptr<Ui::frmOwner> ui_;
  runtime::Services services_;
  OwnershipItems items_;
  bool running_ = false;
  platform::desktop::ActionTable* actions_;  // a child
};

}  // namespace perms
