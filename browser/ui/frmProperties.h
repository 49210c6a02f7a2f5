#pragma once

#include <QDialog>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browser/Properties.h"
#include "browser/SizeCount.h"
#include "platform/desktop/Locale.h"

class QLabel;
class QTimer;

namespace Ui {
class frmProperties;
}

namespace browser {

/// "Properties": texts, and a size that is counted while the window is open. Modal; made for one request.
class frmProperties : public QDialog {
  Q_OBJECT

 public:
  /// `items`: Windows paths to count, in order. None: the size stays "calculating...".
  frmProperties(const runtime::Services& services, const PropertiesRecord& record,
                std::vector<std::string> items, QWidget* parent = nullptr);
  ~frmProperties() override;

  void done(int result) override;  ///< however it closes: the count stops

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void setValue(QLabel* title, QLabel* value, const std::string& text);
  void doLayout();
  void placeSeparator();
  void tmrSize_Timer();
  void showSize();

  std::unique_ptr<Ui::frmProperties> ui_;
  const platform::DriveTable& drives_;
  std::vector<std::string> items_;
  platform::desktop::Locale locale_;
  double scale_;  // pixels a twip
  QTimer* tmrSize_;
  QTimer* look_;           // at the count
  std::size_t shown_ = 0;  // items
  std::optional<SizeCount> count_;
};

}  // namespace browser
