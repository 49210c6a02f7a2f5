#pragma once

#include <QDialog>
#include <memory>

#include "runtime/Settings.h"

namespace Ui {
class frmPermsError;
}

namespace shell {

/// The notice that setting permissions will most likely not work. Shown modally, only while "FirstRun" is
/// "1".
class frmPermsError : public QDialog {
  Q_OBJECT

 public:
  explicit frmPermsError(runtime::Settings& settings, QWidget* parent = nullptr);
  ~frmPermsError() override;

 private:
  void OKButton_Click();
  std::unique_ptr<Ui::frmPermsError> ui_;
  runtime::Settings& settings_;
};

}  // namespace shell
