#include "shell/ui/HelpKey.h"

#include <QApplication>
#include <QKeyEvent>

#include "platform/ShellOpen.h"
#include "shell/HelpPages.h"

namespace shell {
namespace {

/// Object names, innermost first. The extract frame covers the main window, and stands for it.
std::vector<std::string> namesFrom(const QWidget* window) {
  std::vector<std::string> names;
  for (; window != nullptr; window = window->parentWidget() ? window->parentWidget()->window() : nullptr) {
    const auto* const frame = window->findChild<QWidget*>(QStringLiteral("frameUntar"));
    if (frame != nullptr && frame->isVisible()) names.push_back(frame->objectName().toStdString());
    names.push_back(window->objectName().toStdString());
  }
  return names;
}

}  // namespace

void openHelp(Program& program, const QWidget* window) {
  const std::string& folder = program.cygwin.GetEXEPath();
  const std::string file = folder + helpFile;
  const std::string page = "::/" + std::string(helpPage(namesFrom(window)));
  const platform::System& system = program.system;
  if (!platform::shellOpen(system.drives, system.environment, file + page, folder, folder + "bin\\"))
    program.log.append(" Unable to open: " + file);
}

HelpKey::HelpKey(Program& program) : program_(program) { qApp->installEventFilter(this); }

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const auto* const widget = qobject_cast<QWidget*>(watched);
  const auto& key = static_cast<const QKeyEvent&>(*event);
  if (widget == nullptr || key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier) return false;
  if (!key.isAutoRepeat()) openHelp(program_, widget->window());
  return true;
}

}  // namespace shell
