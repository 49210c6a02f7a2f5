#pragma once

#include <QPointer>

#include "platform/Busy.h"
#include "runtime/UserInterface.h"
#include "shell/ui/frmProgress.h"

namespace shell {

/// Whoever sits in front of the windows.
class DesktopUser : public runtime::UserInterface {
 public:
  /// `agrees`: what the quiet forms would ask is agreed to beforehand.
  explicit DesktopUser(platform::Busy& busy, bool agrees = false) : busy_(busy), agrees_(agrees) {}
  ~DesktopUser() override;

  runtime::Answer message(const std::string& text, runtime::Buttons buttons, runtime::Icon icon,
                          const std::string& title = runtime::programTitle,
                          runtime::Consequence consequence = runtime::Consequence::Nothing) override;
  void explainedMessage(const std::string& text, const std::string& explanation, runtime::Icon icon,
                        const std::string& title) override;
  void showCommand(const std::string& title, const std::string& prompt, const std::string& text) override;
  void letEventsRun() override;
  bool agrees() const override { return agrees_; }
  void consoleOutput(std::string_view bytes) override;
  void consoleOpened(const runtime::VisibleRun& run) override;
  void consoleClosed() override;

 private:
  platform::Busy& busy_;
  bool agrees_;
  QPointer<frmProgress> progress_;  // goes with the window that it was opened over
};

}  // namespace shell
