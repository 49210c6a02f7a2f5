#include "platform/desktop/InputBox.h"

#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>

#include "platform/desktop/ActiveWindow.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr int smallestWidth = 420;  // pixels; a path or the start of a command line can be read

/// The prompt is neither HTML nor does a '&' in it name a key.
void showPlainly(QInputDialog& dialog) {
  for (QLabel* label : dialog.findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(nullptr);
  }
  if (auto* line = dialog.findChild<QLineEdit*>()) line->setAccessibleName(dialog.labelText());
}

}  // namespace

std::optional<std::string> inputBox(std::string_view title, std::string_view prompt, std::string_view text) {
  const QPointer<QInputDialog> dialog = new QInputDialog(activeWindow());
  dialog->setInputMode(QInputDialog::TextInput);
  dialog->setWindowTitle(toShown(title));
  dialog->setLabelText(toShown(prompt));
  dialog->setTextValue(toControl(text));
  showPlainly(*dialog);
  dialog->resize(dialog->sizeHint().expandedTo(QSize(smallestWidth, 0)));
  const bool accepted = dialog->exec() == QDialog::Accepted;
  if (dialog.isNull()) return std::nullopt;
  std::optional<std::string> answer;
  if (accepted) answer = fromControl(dialog->textValue());
  delete dialog;
  return answer;
}

}  // namespace platform::desktop
