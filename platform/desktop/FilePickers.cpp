#include "platform/desktop/FilePickers.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPointer>
#include <algorithm>

#include "platform/HeldName.h"
#include "platform/TypedPath.h"
#include "platform/desktop/ActiveWindow.h"
#include "platform/desktop/MessageBox.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

QString hostFolder(const DriveTable& drives, const std::string& startFolder) {
  const auto host = drives.toHost(startFolder);
  const QString folder = host ? QFile::decodeName(QByteArray::fromStdString(*host)) : QString();
  return !folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath();
}

QString patternsOf(const QString& list) {
  QStringList patterns;
  for (const QString& piece : list.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    const QString pattern = piece.trimmed();
    if (!pattern.isEmpty()) patterns.append(pattern == QLatin1String("*.*") ? QStringLiteral("*") : pattern);
  }
  return patterns.join(QLatin1Char(' '));
}

void offerFilters(QFileDialog& dialog, const FileRequest& request) {
  const QStringList filters = nameFilters(request.filter);
  if (filters.isEmpty()) return;
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters(filters);
  dialog.selectNameFilter(filters.value(std::clamp<qsizetype>(request.filterIndex, 1, filters.size()) - 1));
}

/// The dialog may call the entry by its text alone.
int chosenFilter(const QFileDialog& dialog, const FileRequest& request) {
  const QStringList filters = nameFilters(request.filter);
  const QString chosen = dialog.selectedNameFilter();
  for (qsizetype i = 0; i < filters.size(); ++i)
    if (!chosen.isEmpty() && filters[i].startsWith(chosen)) return static_cast<int>(i) + 1;
  return request.filterIndex;
}

/// What is typed into the name field passes the border for typed paths; a name that is there by that very
/// spelling (one that was clicked) is what it says. A desktop's own dialog reads its field itself.
class TypingFileDialog : public QFileDialog {
 public:
  TypingFileDialog(const DriveTable& drives, QWidget* parent) : QFileDialog(parent), drives_(drives) {}

  void accept() override {
    auto* const field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const QString text = field == nullptr ? QString() : field->text();
    if (!text.isEmpty() && !QFileInfo::exists(directory().filePath(text)) && !read(*field)) return;
    QFileDialog::accept();
  }

 private:
  bool read(QLineEdit& field) const {
    const std::string folder = drives_.toWindows(QFile::encodeName(directory().absolutePath()).toStdString());
    const TypedPath typed = typedPath(drives_, fromControl(field.text()), folder);
    const auto host = typed ? drives_.toHost(typed.path) : std::nullopt;
    if (host) field.setText(QFile::decodeName(QByteArray::fromStdString(*host)));
    if (!typed) messageBox(typed.problem, "Error..", BoxIcon::Critical, BoxButtons::Ok);
    return host.has_value();
  }

  const DriveTable& drives_;
};

/// Its window may be unloaded while the dialog waits and takes the dialog along.
std::string ask(const QPointer<QFileDialog>& dialog, const DriveTable& drives) {
  const bool accepted = dialog->exec() == QDialog::Accepted;
  if (dialog.isNull()) return {};
  const QStringList chosen = accepted ? dialog->selectedFiles() : QStringList();
  delete dialog;
  return chosen.isEmpty() ? std::string()
                          : drives.toWindows(QFile::encodeName(chosen.constFirst()).toStdString());
}

QFileDialog* makeDialog(const DriveTable& drives, const std::string& title, const std::string& startFolder) {
  auto* dialog = new TypingFileDialog(drives, activeWindow());
  dialog->setWindowTitle(toShown(title));
  dialog->setSupportedSchemes({QStringLiteral("file")});
  dialog->setDirectory(hostFolder(drives, startFolder));
  return dialog;
}

QFileDialog* makeFileDialog(const DriveTable& drives, const FileRequest& request) {
  QFileDialog* dialog = makeDialog(drives, request.title, request.startFolder);
  offerFilters(*dialog, request);
  return dialog;
}

void proposeName(QFileDialog& dialog, const std::string& fileName) {
  if (fileName.empty()) return;
  dialog.selectFile(QFile::decodeName(QByteArray::fromStdString(releaseName(fileName))));
}

}  // namespace

QStringList nameFilters(std::string_view filter) {
  const QStringList pieces = toControl(filter).split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype i = 0; i < pieces.size(); i += 2) {
    const QString& text = pieces[i];
    if (text.isEmpty()) continue;
    filters.append(QStringLiteral("%1 (%2)").arg(text.trimmed(), patternsOf(pieces.value(i + 1, text))));
  }
  return filters;
}

std::string DesktopFilePickers::openFile(const FileRequest& request) {
  const QPointer<QFileDialog> dialog = makeFileDialog(drives_, request);
  dialog->setFileMode(QFileDialog::ExistingFile);
  proposeName(*dialog, request.fileName);
  return ask(dialog, drives_);
}

std::string DesktopFilePickers::saveFile(const FileRequest& request) {
  const QPointer<QFileDialog> dialog = makeFileDialog(drives_, request);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setFileMode(QFileDialog::AnyFile);
  dialog->setOption(QFileDialog::DontConfirmOverwrite);
  proposeName(*dialog, request.fileName);
  if (request.chosenFilter != nullptr) {
    QObject::connect(dialog, &QFileDialog::accepted,
                     [&] { *request.chosenFilter = chosenFilter(*dialog, request); });
  }
  return ask(dialog, drives_);
}

std::string DesktopFilePickers::folder(const std::string& title, const std::string& startFolder) {
  const QPointer<QFileDialog> dialog = makeDialog(drives_, title, startFolder);
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly);
  return ask(dialog, drives_);
}

}  // namespace platform::desktop
