#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <string>

#include "archive/Extractor.h"
#include "runtime/Services.h"

namespace Ui {
class frmQuickExtract;
}

namespace archive {

/// The small window of an extraction that the command line asks for. It stays shown for as long as the
/// extraction takes.
class frmQuickExtract : public QDialog, private ListingProgress {
  Q_OBJECT

 public:
  /// `endProgram` is what Cancel does: it ends the program at once.
  frmQuickExtract(runtime::Services services, std::function<void()> endProgram, QWidget* parent = nullptr);
  ~frmQuickExtract() override;

  void setStatus(const std::string& text);
  /// Extracts the whole archive into the folder; the bar follows the listing.
  ExtractResult QuickExtract(const std::string& archivePath, const std::string& outFolder);

  void reject() override { cmdCancel_Click(); }

 private:
  void showPercent(float percent) override;
  bool cancelled() const override { return cancelled_; }
  void cmdCancel_Click();

  runtime::Services services_;
  std::function<void()> endProgram_;
  std::unique_ptr<Ui::frmQuickExtract> ui_;
  bool cancelled_ = false;
};

}  // namespace archive
