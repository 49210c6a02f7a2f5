#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "archive/ExtractJob.h"
#include "runtime/Services.h"

namespace Ui {
class frmQuickExtract;
}

namespace archive {

/// The small window of an extraction that the command line asks for. It stays shown for as long as the
/// extraction takes, under a gate that its owner holds. Cancel ends the program: the job stops first.
class frmQuickExtract : public QDialog, private ListingProgress {
  Q_OBJECT

 public:
  explicit frmQuickExtract(runtime::Services services, QWidget* parent = nullptr);
  ~frmQuickExtract() override;

  void setStatus(const std::string& text);
  /// Extracts the whole archive into the folder. The bar moves while nobody knows how long it takes, then
  /// counts the members.
  Extraction QuickExtract(const std::string& archivePath, const std::string& outFolder);

  void reject() override { cmdCancel_Click(); }

 private:
  void showPercent(float percent) override;
  std::function<void(std::size_t done)> unpacking(std::size_t members) override;
  void cmdCancel_Click();

  runtime::Services services_;
  std::unique_ptr<Ui::frmQuickExtract> ui_;
};

}  // namespace archive
