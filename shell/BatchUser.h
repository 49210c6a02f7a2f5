#pragma once

#include "runtime/UserInterface.h"

namespace shell {

/// Whoever runs the program without windows: messages are lines on standard error. A question that only makes
/// something new is answered with its OK; one that would replace or lose something is refused, and asked on a
/// terminal. With `yes` all are agreed to, without a word. After an end signal nothing is said or asked.
class BatchUser : public runtime::UserInterface {
 public:
  explicit BatchUser(bool yes) : yes_(yes) {}

  runtime::Answer message(const std::string& text, runtime::Buttons buttons, runtime::Icon icon,
                          const std::string& title, runtime::Consequence consequence) override;
  void showCommand(const std::string& title, const std::string& prompt, const std::string& text) override;
  void letEventsRun() override {}
  void consoleOutput(std::string_view bytes) override;
  void consoleOpened(const runtime::VisibleRun&) override {}
  void consoleClosed() override {}
  bool agrees() const override { return yes_; }
  bool keepsConsole() const override { return true; }

 private:
  bool yes_;
};

}  // namespace shell
