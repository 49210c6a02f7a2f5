// Sends one file to a terminal through the program's own dialog, without a person: demo_send FILE PORT.
// Prints the log; ends with 0 only when the log says that the file was sent.

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <cstdio>

#include "download/ui/frmNetloader.h"
#include "shell/BatchTools.h"
#include "platform/TypedPath.h"
#include "shell/Program.h"
#include "shell/ui/DesktopUser.h"

namespace {

constexpr int lookEvery = 50;  // milliseconds

/// Every box is read aloud and answered with OK.
void answerBox() {
  auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  if (box == nullptr) return;
  std::printf("box \"%s\": %s\n", qPrintable(box->windowTitle()), qPrintable(box->text()));
  box->accept();
}

void fillAndSend(QDialog& form, const char* port) {
  const char* const loopback[] = {"127", "0", "0", "1"};
  for (int i = 0; i < 4; ++i)
    form.findChild<QLineEdit*>(QStringLiteral("txtIP_%1").arg(i))->setText(loopback[i]);
  form.findChild<QLineEdit*>(QStringLiteral("txtPort"))->setText(QString::fromLocal8Bit(port));
  auto* const send = form.findChild<QPushButton*>(QStringLiteral("cmdSend"));
  send->click();
  // A send that failed leaves the dialog open, ready for another.
  auto* const look = new QTimer(&form);
  QObject::connect(look, &QTimer::timeout, &form, [&form, send] {
    if (send->isEnabled() && QApplication::activeModalWidget() == &form) form.reject();
  });
  look->start(lookEvery);
}

}  // namespace

int main(int count, char** words) {
  QApplication application(count, words);
  if (count != 3) {
    std::fputs("demo_send FILE PORT\n", stderr);
    return 2;
  }
  shell::Host host;
  shell::DesktopUser user(host.busy);
  shell::Program program(host.system(), host.programFolder, user);
  program.log.setOnEntry([](const std::string& line) { std::printf("log %s\n", line.c_str()); });
  shell::prepareTools(program);
  QTimer boxes;
  QObject::connect(&boxes, &QTimer::timeout, answerBox);
  boxes.start(lookEvery);
  download::frmNetloader form(program.services(),
                              platform::typedPath(host.drives, words[1], host.callerFolder).path);
  QTimer::singleShot(0, &form, [&form, words] { fillAndSend(form, words[2]); });
  form.exec();
  return program.log.text().find(" Successfully sent ") != std::string::npos ? 0 : 1;
}
