#pragma once

#include <QDialog>
#include <memory>

#include "platform/desktop/Actions.h"
#include "runtime/Services.h"
#include "shell/Options.h"

namespace Ui {
class frmOptions;
}

namespace shell {

/// "Options": the settings of the machine, on three tabs. Modal; OK saves them.
class frmOptions : public QDialog {
  Q_OBJECT

 public:
  explicit frmOptions(const runtime::Services& services, QWidget* parent = nullptr);
  ~frmOptions() override;

 private:
  void showOptions(const Options& options);
  Options chosen() const;
  void cmdOK_Click();

  std::unique_ptr<Ui::frmOptions> ui_;
  runtime::Services services_;
  platform::desktop::ActionTable* actions_ = nullptr;  // a child
};

}  // namespace shell
