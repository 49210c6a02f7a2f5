#include "platform/desktop/FolderCompleter.h"

#include <algorithm>

#include "platform/Files.h"
#include "platform/HeldName.h"
#include "platform/TypedPath.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

/// There a backslash belongs to a name.
bool isHostPath(const QString& typed) {
  return typed.startsWith(QLatin1Char('/')) || typed.startsWith(QLatin1Char('~'));
}

QString frontOf(const QString& typed) {
  const qsizetype slash = typed.lastIndexOf(QLatin1Char('/'));
  const qsizetype backslash = isHostPath(typed) ? -1 : typed.lastIndexOf(QLatin1Char('\\'));
  return typed.left(std::max(slash, backslash) + 1);
}

/// Empty for a name that cannot be typed so.
QString nameAsTyped(const std::string& name, bool hostPath) {
  if (!hostPath) return toControl(name);
  const std::string released = releaseName(name);
  const QString text = toControl(released);
  return fromControl(text) == released ? text : QString();
}

}  // namespace

FolderCompleter::FolderCompleter(QLineEdit& box, const DriveTable& drives,
                                 std::function<std::string()> folder)
    : QCompleter(&box), drives_(drives), folder_(std::move(folder)) {
  setModel(&texts_);
  setCaseSensitivity(Qt::CaseInsensitive);
  box.setCompleter(this);
  connect(&box, &QLineEdit::textEdited, this, &FolderCompleter::read);
}

void FolderCompleter::read(const QString& typed) {
  const QString front = frontOf(typed);
  const bool hidden = typed.mid(front.size()).startsWith(QLatin1Char('.'));
  const std::string base = folder_();
  if (base == base_ && front == front_ && hidden == hidden_ && texts_.rowCount() > 0) return;
  base_ = base;
  front_ = front;
  hidden_ = hidden;
  texts_.setStringList(folders());
}

QStringList FolderCompleter::folders() const {
  const TypedPath path =
      front_.isEmpty() ? TypedPath{base_, ""} : typedPath(drives_, fromControl(front_), base_);
  QStringList texts;
  if (!path) return texts;
  for (const Files::Entry& entry : Files(drives_).entries(path.path).value_or(std::vector<Files::Entry>())) {
    if (!entry.isFolder || entry.name.starts_with('.') != hidden_) continue;
    const QString name = nameAsTyped(entry.name, isHostPath(front_));
    if (!name.isEmpty()) texts.append(front_ + name);
  }
  return texts;
}

}  // namespace platform::desktop
