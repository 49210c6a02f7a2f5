#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmAbout;
}

namespace shell {

/// The About box; not modal. Its parent is the main window.
class frmAbout : public QDialog {
  Q_OBJECT

 public:
  explicit frmAbout(QWidget* parent = nullptr);
  ~frmAbout() override;

 private:
  void cmdOK_Click();
  std::unique_ptr<Ui::frmAbout> ui_;
};

}  // namespace shell
