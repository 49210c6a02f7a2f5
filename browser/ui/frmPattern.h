#pragma once

#include <QDialog>
#include <memory>
#include <string>

namespace Ui {
class frmPattern;
}

namespace browser {

/// "Pattern Selection": the wildcard pattern of the filter "Custom...", as two parts with a dot between them.
/// Modal; made for one request; stands over the middle of its parent.
class frmPattern : public QDialog {
  Q_OBJECT

 public:
  explicit frmPattern(const std::string& pattern, QWidget* parent = nullptr);
  ~frmPattern() override;

  std::string pattern() const;  ///< what the two boxes say, with the dot

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  std::unique_ptr<Ui::frmPattern> ui_;
};

}  // namespace browser
