#include "perms/ui/frmPreview.h"

#include <QHeaderView>
#include <QPointer>

#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "ui_frmPreview.h"

namespace perms {

using platform::desktop::toShown;

frmPreview::frmPreview(const runtime::Services& services, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmPreview>()),
      services_(services),
      model_(new ChangesModel(this)) {
  using namespace platform::desktop;
  ui_->setupUi(this);
  ui_->listChanges->setModel(model_);
  ui_->listChanges->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  ui_->listChanges->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  setWhileBusy(this, WhileBusy::Acts);
  connectCancel(ui_->cmdClose, &QPushButton::clicked, this, &frmPreview::cmdClose_Click);
  connectHandler(ui_->txtNarrow, &QLineEdit::textChanged, this, services_.system.busy,
                 &frmPreview::txtNarrow_Change);
}

frmPreview::~frmPreview() = default;

void frmPreview::fill(const PermissionItems& items, const PermissionChoice& choice) {
  const QPointer<frmPreview> self(this);
  const platform::Busy::Scope busy(services_.system.busy);
  looking_ = true;
  ui_->txtNarrow->setEnabled(false);
  ui_->lblCount->setText(QStringLiteral("Please Wait..."));
  show();
  services_.user.letEventsRun();
  auto changes = previewChanges(services_, items, choice);
  if (self.isNull()) return;
  looking_ = false;
  if (!changes) {
    QDialog::reject();
    services_.user.message("Unable to read the permissions", runtime::Buttons::Ok, runtime::Icon::Critical,
                           "Error..");
    return;
  }
  counted_ = changes->countText();
  model_->setChanges(std::move(changes->list));
  ui_->txtNarrow->setEnabled(true);
  ui_->txtNarrow->setFocus();
  showCount();
}

void frmPreview::txtNarrow_Change() {
  model_->narrow(ui_->txtNarrow->text());
  showCount();
}

void frmPreview::showCount() {
  const bool narrowed = !ui_->txtNarrow->text().isEmpty();
  const std::string shown = narrowed ? "; " + std::to_string(model_->rowCount()) + " shown" : "";
  ui_->lblCount->setText(toShown(counted_ + shown));
}

/// While it still looks, that is stopped, and the window goes then.
void frmPreview::cmdClose_Click() { looking_ ? services_.system.busy.requestStop() : QDialog::reject(); }

}  // namespace perms
