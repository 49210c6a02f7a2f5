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

DesktopUser::~DesktopUser() { delete progress_; }

runtime::Answer DesktopUser::message(const std::string& text, runtime::Buttons buttons, runtime::Icon icon,
                                     const std::string& title, runtime::Consequence consequence) {
  if (busy_.held() && busy_.stopRequested()) return runtime::refusalOf(buttons);
  if (agrees_ && buttons != runtime::Buttons::Ok)
    return buttons == runtime::Buttons::YesNo ? runtime::Answer::Yes : runtime::Answer::Ok;
  const bool refusalPreset = consequence == runtime::Consequence::TakesAway;
  return answerOf(
      platform::desktop::messageBox(text, title, boxIcon(icon), boxButtons(buttons), {}, refusalPreset));
}

void DesktopUser::explainedMessage(const std::string& text, const std::string& explanation,
                                   runtime::Icon icon, const std::string& title) {
  if (busy_.held() && busy_.stopRequested()) return;
  platform::desktop::messageBox(text, title, boxIcon(icon), BoxButtons::Ok, explanation);
}

void DesktopUser::showCommand(const std::string& title, const std::string& prompt, const std::string& text) {
  if (busy_.held() && busy_.stopRequested()) return;
  platform::desktop::inputBox(title, prompt, text);
}

/// Outside a job nothing filters what a person does, so it waits until the handler is done.
void DesktopUser::letEventsRun() {
  busy_.held() ? platform::desktop::letEventsRun() : platform::desktop::letWindowsPaint();
}

void DesktopUser::consoleOutput(std::string_view bytes) {
  if (!progress_.isNull()) progress_->append(bytes);
}

void DesktopUser::consoleOpened(const runtime::VisibleRun& run) {
  delete progress_;
  if (run.counted) return;
  progress_ = new frmProgress(run, platform::desktop::activeWindow());
  QObject::connect(progress_, &frmProgress::stopWanted, progress_, [this] { busy_.requestStop(); });
}

void DesktopUser::consoleClosed() { delete progress_; }

}  // namespace shell
