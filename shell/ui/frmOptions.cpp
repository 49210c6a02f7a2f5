#include "shell/ui/frmOptions.h"

#include <QCheckBox>
#include <QRadioButton>

#include "ui_frmOptions.h"

namespace shell {
namespace {

constexpr std::array<const char*, Options::menuItems> itemNames = {"checkMenuItems_0", "checkMenuItems_1",
                                                                   "checkMenuItems_2", "checkMenuItems_3",
                                                                   "checkMenuItems_4", "checkMenuItems_5"};

void choose(QRadioButton& first, QRadioButton& second, int index) {
  first.setChecked(index == 0);
  second.setChecked(index == 1);
}

int chosenOf(const QRadioButton& first, const QRadioButton& second) {
  constexpr int neither = -1;
  return first.isChecked() ? 0 : second.isChecked() ? 1 : neither;
}

}  // namespace

frmOptions::frmOptions(const runtime::Services& services, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmOptions>()), services_(services) {
  ui_->setupUi(this);
  const auto update = [this] { actions_->update(); };
  const auto withMenu = [this] { return ui_->checkUseExt->isChecked(); };
  const auto byHand = [this] { return !ui_->optPermMode_1->isChecked(); };
  std::vector<platform::desktop::Action> rows = {
      {"checkUseExt", update},    {"frameMenuItems", {}, withMenu},     {"optPermMode_0", update},
      {"optPermMode_1", update},  {"frameManualPerms", {}, byHand},     {"optPerms_0", {}, byHand},
      {"optPerms_1", {}, byHand}, {"cmdOK", [this] { cmdOK_Click(); }}, {"cmdExit", [this] { reject(); }},
  };
  for (const char* name : itemNames) rows.push_back({name, {}, withMenu});
  showOptions(readOptions(services_.settings));
  actions_ = new platform::desktop::ActionTable(*this, services_.system.busy, std::move(rows));
}

frmOptions::~frmOptions() = default;

void frmOptions::showOptions(const Options& options) {
  ui_->SSTab1->setCurrentIndex(0);
  ui_->checkUseExt->setChecked(options.useExtension);
  for (std::size_t i = 0; i < itemNames.size(); ++i)
    findChild<QCheckBox*>(QLatin1String(itemNames[i]))->setChecked(options.items[i]);
  choose(*ui_->optPermMode_0, *ui_->optPermMode_1, options.permissionMode);
  choose(*ui_->optPerms_0, *ui_->optPerms_1, options.permissions);
  ui_->checkUsr8->setChecked(options.usr8);
}

Options frmOptions::chosen() const {
  Options options;
  options.useExtension = ui_->checkUseExt->isChecked();
  for (std::size_t i = 0; i < itemNames.size(); ++i)
    options.items[i] = findChild<QCheckBox*>(QLatin1String(itemNames[i]))->isChecked();
  options.permissionMode = chosenOf(*ui_->optPermMode_0, *ui_->optPermMode_1);
  options.permissions = chosenOf(*ui_->optPerms_0, *ui_->optPerms_1);
  options.usr8 = ui_->checkUsr8->isChecked();
  return options;
}

void frmOptions::cmdOK_Click() {
  saveOptions(services_.settings, chosen());
  accept();
}

}  // namespace shell
