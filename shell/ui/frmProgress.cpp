#include "shell/ui/frmProgress.h"

#include <QFontDatabase>
#include <QScrollBar>
#include <array>
#include <cstdio>

#include "browser/ui/NumberTexts.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "ui_frmProgress.h"

namespace shell {
namespace {

constexpr int patience = 500;     // milliseconds; a run that is over sooner shows nothing
constexpr int updateEvery = 200;  // milliseconds; a flood of lines costs the run little
constexpr int keptLines = 10000;  // a long run does not fill the memory
constexpr int shownColumns = 72;
constexpr int shownLines = 12;

/// "0:07", "1:02:03"
std::string elapsedText(qint64 milliseconds) {
  const qint64 seconds = milliseconds / 1000;
  const qint64 hours = seconds / 3600;
  std::array<char, 32> text{};
  if (hours > 0)
    std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", hours, seconds / 60 % 60, seconds % 60);
  else
    std::snprintf(text.data(), text.size(), "%lld:%02lld", seconds / 60, seconds % 60);
  return text.data();
}

/// Where the last `keptLines` lines begin; 0: there are no more of them.
std::size_t beginOfKept(std::string_view text) {
  std::size_t at = text.size();
  for (int line = 0; line < keptLines && at != 0; ++line) {
    const std::size_t feed = text.rfind('\n', at - 1);
    if (feed == text.npos) return 0;
    at = feed;
  }
  return at == 0 ? 0 : at + 1;
}

}  // namespace

frmProgress::frmProgress(runtime::VisibleRun run, QWidget* parent)
    : QDialog(parent, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      ui_(std::make_unique<Ui::frmProgress>()),
      run_(std::move(run)) {
  ui_->setupUi(this);
  setWindowTitle(platform::desktop::toShown(run_.title));
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_QuitOnClose, false);
  ui_->txtLines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  ui_->txtLines->setMaximumBlockCount(keptLines);
  platform::desktop::connectCancel(ui_->cmdStop, &QPushButton::clicked, this, &frmProgress::reject);
  sinceStart_.start();
  appear_.setSingleShot(true);
  appear_.setTimerType(Qt::PreciseTimer);
  connect(&appear_, &QTimer::timeout, this, &frmProgress::appear);
  appear_.start(patience);
  connect(&update_, &QTimer::timeout, this, &frmProgress::showState);
}

frmProgress::~frmProgress() = default;

void frmProgress::appear() {
  const QFontMetrics metrics(ui_->txtLines->font());
  resize(metrics.horizontalAdvance(QLatin1Char('0')) * shownColumns, metrics.lineSpacing() * shownLines);
  showState();
  show();
  update_.start(updateEvery);
}

void frmProgress::append(std::string_view bytes) {
  names_.add(bytes);
  waiting_ += bytes;
}

void frmProgress::showState() {
  ui_->lblProgress->setText(platform::desktop::toShown(progressText()));
  if (!waiting_.empty()) showLines();
}

/// Who reads further up is left there.
void frmProgress::showLines() {
  if (const std::size_t begin = beginOfKept(waiting_); begin != 0) {
    waiting_.erase(0, begin);
    decoder_.resetState();
    ui_->txtLines->clear();
  }
  QString text = decoder_(QByteArrayView(waiting_.data(), static_cast<qsizetype>(waiting_.size())));
  waiting_.clear();
  QScrollBar& bar = *ui_->txtLines->verticalScrollBar();
  const bool atEnd = bar.value() == bar.maximum();
  QTextCursor end(ui_->txtLines->document());
  end.movePosition(QTextCursor::End);
  end.insertText(text.remove(QLatin1Char('\r')));
  if (atEnd) bar.setValue(bar.maximum());
}

std::string frmProgress::progressText() const {
  std::string text = "Time: " + elapsedText(sinceStart_.elapsed());
  if (run_.members > 0)
    text += "   Members: " + locale_.numberText(std::min(names_.done(), run_.members)) + " of " +
            locale_.numberText(run_.members);
  else if (names_.named() > 0)
    text += "   Members: " + locale_.numberText(names_.done());
  if (run_.written)
    text += "   Written: " + browser::formatFSOSize(run_.written(), browser::numberTexts(locale_));
  return text;
}

void frmProgress::reject() {
  if (stopping_) return;
  stopping_ = true;
  ui_->cmdStop->setEnabled(false);
  emit stopWanted();
}

}  // namespace shell
