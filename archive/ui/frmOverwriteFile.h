#pragma once

#include <QDialog>
#include <QPointer>
#include <memory>

#include "archive/OverwriteAsker.h"

namespace Ui {
class frmOverwriteFile;
}

namespace archive {

/// Asks whether something that stands in the output folder may be replaced. Escape and the close box cancel.
class frmOverwriteFile : public QDialog {
  Q_OBJECT

 public:
  explicit frmOverwriteFile(const OverwriteQuestion& question, QWidget* parent = nullptr);
  ~frmOverwriteFile() override;

  OverwriteAnswer answer() const { return answer_; }

 private:
  void showQuestion(const OverwriteQuestion& question);
  void cmdYes_Click() { end(OverwriteAnswer::Yes); }
  void cmdAll_Click() { end(OverwriteAnswer::YesToAll); }
  void cmdNo_Click() { end(OverwriteAnswer::No); }
  void end(OverwriteAnswer answer);

  std::unique_ptr<Ui::frmOverwriteFile> ui_;
  OverwriteAnswer answer_ = OverwriteAnswer::Cancel;
};

/// Asks with the dialog.
class OverwriteDialogs : public OverwriteAsker {
 public:
  explicit OverwriteDialogs(QWidget* parent) : parent_(parent) {}
  OverwriteAnswer ask(const OverwriteQuestion& question) override;

 private:
  QWidget* parent_;
};

}  // namespace archive
