#include "platform/desktop/ConsoleWindow.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr int keptLines = 10000;  // a long run does not fill the memory
constexpr int shownColumns = 80;
constexpr int shownLines = 20;

}  // namespace

ConsoleWindow::ConsoleWindow(std::string_view title, QWidget* parent)
    : QWidget(parent, Qt::Window), output_(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("console"));
  setWindowTitle(toShown(title));
  setAttribute(Qt::WA_QuitOnClose, false);
  output_->setObjectName(QStringLiteral("txtConsole"));
  output_->setAccessibleName(tr("Output of the tool"));
  output_->setReadOnly(true);
  output_->setMaximumBlockCount(keptLines);
  output_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(output_);
  auto* stop = new QPushButton(tr("Stop"), this);
  stop->setObjectName(QStringLiteral("cmdStop"));
  connect(stop, &QPushButton::clicked, this, &ConsoleWindow::stopWanted);
  layout->addWidget(stop, 0, Qt::AlignRight);
  const QFontMetrics metrics(output_->font());
  resize(metrics.horizontalAdvance(QLatin1Char('0')) * shownColumns + output_->verticalScrollBar()->width(),
         metrics.lineSpacing() * shownLines);
}

void ConsoleWindow::append(std::string_view bytes) {
  QString text = decoder_(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  if (text.isEmpty()) return;
  const bool continues = endsInReturn_ && text.startsWith(QLatin1Char('\n'));
  endsInReturn_ = text.endsWith(QLatin1Char('\r'));
  if (continues) text.remove(0, 1);
  QTextCursor end(output_->document());
  end.movePosition(QTextCursor::End);
  end.insertText(text);
  output_->verticalScrollBar()->setValue(output_->verticalScrollBar()->maximum());
}

void ConsoleWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  emit stopWanted();
}

}  // namespace platform::desktop
