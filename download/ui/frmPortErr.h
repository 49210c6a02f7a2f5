#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmPortErr;
}

namespace download {

/// "Serial Download Failed": the port is in use. Accepted: Retry.
class frmPortErr : public QDialog {
  Q_OBJECT

 public:
  explicit frmPortErr(int comPort, QWidget* parent = nullptr);
  ~frmPortErr() override;

 private:
  std::unique_ptr<Ui::frmPortErr> ui_;
};

}  // namespace download
