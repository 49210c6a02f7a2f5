#include "perms/ui/frmOwner.h"

#include <QPointer>

#include "platform/desktop/Text.h"
#include "runtime/OwnerEntries.h"
#include "ui_frmOwner.h"

namespace perms {

frmOwner::frmOwner(const runtime::Services& services, OwnershipItems items, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmOwner>()), services_(services), items_(std::move(items)) {
  using platform::desktop::WhileBusy;
  ui_->setupUi(this);
  QStringList owners;
  for (const runtime::OwnerEntry& entry : runtime::ownerEntries())
    owners.append(QString::fromLatin1(entry.name));
  ui_->listOwner->setEntries(owners);
  const auto idle = [this] { return !running_; };
  actions_ =
      new platform::desktop::ActionTable(*this, services_.system.busy,
                                         {{"cmdSetOwner", [this] { cmdSetOwner_Click(); }, idle},
                                          {"listOwner", {}, idle},
                                          {"cmdCancel", [this] { cmdCancel_Click(); }, {}, WhileBusy::Acts}});
}

frmOwner::~frmOwner() = default;

void frmOwner::cmdSetOwner_Click() {
  const QPointer<frmOwner> self(this);
  const platform::Busy::Scope busy(services_.system.busy);
  const QString caption = ui_->cmdSetOwner->text();
  running_ = true;
  ui_->cmdSetOwner->setText(QStringLiteral("Setting.."));
  actions_->update();
  OwnershipJob job(services_, ownerTo(platform::desktop::fromControl(ui_->listOwner->topEntry())), items_);
  job.run();
  if (self.isNull()) return;
  running_ = false;
  ui_->cmdSetOwner->setText(caption);
  actions_->update();
  accept();
}

/// A run that goes on is asked to stop; the dialog unloads at its end.
void frmOwner::cmdCancel_Click() { running_ ? services_.system.busy.requestStop() : QDialog::reject(); }

}  // namespace perms
