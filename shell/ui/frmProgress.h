#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QStringDecoder>
#include <QTimer>
#include <memory>
#include <string>
#include <string_view>

#include "platform/desktop/Locale.h"
#include "runtime/NameCount.h"
#include "runtime/UserInterface.h"

namespace Ui {
class frmProgress;
}

namespace shell {

/// The panel of a visible run: what it does, the tool's latest lines, how long it has worked and how far it
/// is. It comes up by itself when the run has lasted half a second, over its parent, and goes when its owner
/// takes it away. "Stop", Escape and the close box ask for the run's end.
class frmProgress : public QDialog {
  Q_OBJECT

 public:
  explicit frmProgress(runtime::VisibleRun run, QWidget* parent = nullptr);
  ~frmProgress() override;

  void append(std::string_view bytes);  ///< UTF-8; a character may be split between two calls
  void reject() override;

 signals:
  void stopWanted();  ///< once

 private:
  void appear();
  void showState();
  void showLines();
  std::string progressText() const;

  std::unique_ptr<Ui::frmProgress> ui_;
  runtime::VisibleRun run_;
  platform::desktop::Locale locale_;
  runtime::NameCount names_;
  std::string waiting_;  // came since the lines were shown last
  QStringDecoder decoder_{QStringDecoder::Utf8};
  QElapsedTimer sinceStart_;
  QTimer appear_;
  QTimer update_;
  bool stopping_ = false;
};

}  // namespace shell
