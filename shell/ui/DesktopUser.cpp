#include "shell/ui/DesktopUser.h"

#include "platform/desktop/ActiveWindow.h"
#include "platform/desktop/Events.h"
#include "platform/desktop/InputBox.h"
#include "platform/desktop/MessageBox.h"

namespace shell {
namespace {

using platform::desktop::BoxAnswer;
using platform::desktop::BoxButtons;
using platform::desktop::BoxIcon;
using platform::desktop::ConsoleWindow;

constexpr int repaintEvery = 20;  // milliseconds, while output comes without a pause

BoxIcon boxIcon(runtime::Icon icon) {
  switch (icon) {
    case runtime::Icon::Critical:
      return BoxIcon::Critical;
    case runtime::Icon::Information:
      return BoxIcon::Information;
    case runtime::Icon::Exclamation:
      return BoxIcon::Exclamation;
    case runtime::Icon::None:
      break;
  }
  return BoxIcon::None;
}

BoxButtons boxButtons(runtime::Buttons buttons) {
  if (buttons == runtime::Buttons::OkCancel) return BoxButtons::OkCancel;
  return buttons == runtime::Buttons::YesNo ? BoxButtons::YesNo : BoxButtons::Ok;
}

runtime::Answer answerOf(BoxAnswer answer) {
  switch (answer) {
    case BoxAnswer::Ok:
      return runtime::Answer::Ok;
    case BoxAnswer::Yes:
      return runtime::Answer::Yes;
    case BoxAnswer::No:
      return runtime::Answer::No;
    case BoxAnswer::Cancel:
      break;
  }
  return runtime::Answer::Cancel;
}

}  // namespace

DesktopUser::~DesktopUser() { delete console_; }

runtime::Answer DesktopUser::message(const std::string& text, runtime::Buttons buttons, runtime::Icon icon,
                                     const std::string& title, runtime::Consequence) {
  return answerOf(platform::desktop::messageBox(text, title, boxIcon(icon), boxButtons(buttons)));
}

void DesktopUser::showCommand(const std::string& title, const std::string& prompt, const std::string& text) {
  platform::desktop::inputBox(title, prompt, text);
}

void DesktopUser::letEventsRun() { platform::desktop::letEventsRun(); }

void DesktopUser::repaint() { platform::desktop::repaint(); }

bool DesktopUser::consoleStands() const { return !console_.isNull() && !console_->wasClosed(); }

bool DesktopUser::consoleOutput(std::string_view bytes) {
  if (!consoleStands()) return false;
  console_->append(bytes);
  return sinceRepaint_.elapsed() < repaintEvery || consoleStep();
}

bool DesktopUser::consoleStep() {
  sinceRepaint_.restart();
  platform::desktop::letEventsRun();
  return consoleStands();
}

void DesktopUser::consoleOpened(const std::string& title) {
  delete console_;
  console_ = new ConsoleWindow(title, platform::desktop::activeWindow());
  console_->show();
  sinceRepaint_.start();
}

void DesktopUser::consoleClosed() { delete console_; }

}  // namespace shell
