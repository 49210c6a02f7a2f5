#pragma once

#include <QDialog>
#include <memory>

#include "runtime/Settings.h"

namespace Ui {
class Dialog;
}

namespace shell {

/// The notice that administrative privileges are missing. Shown modally, only while "FirstRun" is "1".
class Dialog : public QDialog {
  Q_OBJECT

 public:
  explicit Dialog(runtime::Settings& settings, QWidget* parent = nullptr);
  ~Dialog() override;

 private:
  void OKButton_Click();
  std::unique_ptr<Ui::Dialog> ui_;
  runtime::Settings& settings_;
};

}  // namespace shell
