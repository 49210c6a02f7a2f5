#include "platform/desktop/CommandConsole.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QSocketNotifier>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <csignal>
#include <system_error>

#include "platform/DetachedStart.h"
#include "platform/HeldName.h"
#include "platform/desktop/MessageBox.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr int columns = 80;
constexpr int rows = 25;
constexpr int showPace = 30;           // milliseconds; what comes meanwhile is shown together
constexpr int readsBehindTheEnd = 64;  // a child of the program may write for ever
constexpr int stopPace = 50;           // milliseconds
constexpr int stopTime = 1000;         // milliseconds until those that do not end are killed
constexpr const char* pauseLine = "Press any key to continue . . . ";
constexpr const char* stayingLine = "\nThis window stays open until it is closed.";
constexpr std::string_view noEscapes = "TERM=dumb";

/// What a keyboard sends for the key; empty for one that moves the view.
std::string bytesOf(const QKeyEvent& key) {
  if (key.key() == Qt::Key_Backspace) return "\x7F";
  if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) return "\r";
  const bool letter = key.key() >= Qt::Key_A && key.key() <= Qt::Key_Z;
  if (letter && key.modifiers() == Qt::ControlModifier)
    return std::string(1, static_cast<char>(key.key() - Qt::Key_A + 1));
  return key.text().toStdString();
}

bool isModifier(int key) {
  return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr ||
         key == Qt::Key_Super_L || key == Qt::Key_Super_R;
}

ChildSettings settingsOf(const std::string& program, const ConsoleCommand& command,
                         const std::string& workingFolder) {
  ChildSettings settings{program, {program}, usersEnvironment(), workingFolder};
  for (const std::string& argument : command.arguments) settings.arguments.push_back(releaseName(argument));
  std::erase_if(settings.environment, [](const std::string& text) { return text.starts_with("TERM="); });
  settings.environment.emplace_back(noEscapes);
  return settings;
}

/// A NUL, which a name can hold only by being made up, would end an argument early.
bool canBePassed(const ChildSettings& settings) {
  return std::none_of(settings.arguments.begin(), settings.arguments.end(),
                      [](const std::string& text) { return text.find('\0') != text.npos; });
}

}  // namespace

CommandConsole::CommandConsole(const DriveTable& drives, std::string_view command,
                               const std::string& workingFolder)
    : command_(readConsoleCommand(command)), view_(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("console"));
  const bool understood = command_.refusal.empty();
  setWindowTitle(understood ? toShown(command_.title()) : tr("Console"));
  makeView();
  showing_.setSingleShot(true);
  showing_.setInterval(showPace);
  connect(&showing_, &QTimer::timeout, this, &CommandConsole::showLines);
  stopping_.setInterval(stopPace);
  connect(&stopping_, &QTimer::timeout, this, &CommandConsole::closeOnceEnded);
  if (understood)
    startProgram(drives, workingFolder);
  else
    pause(command_.refusal);
}

CommandConsole::~CommandConsole() = default;

void CommandConsole::makeView() {
  view_->setObjectName(QStringLiteral("txtConsole"));
  view_->setAccessibleName(tr("Console"));
  view_->setReadOnly(true);
  view_->setUndoRedoEnabled(false);
  view_->setMaximumBlockCount(static_cast<int>(ConsoleText::keptLines));
  view_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  view_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  view_->setAttribute(Qt::WA_InputMethodEnabled);
  view_->installEventFilter(this);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(view_);
  const QFontMetrics metrics(view_->font());
  const int frame = 2 * (view_->frameWidth() + static_cast<int>(view_->document()->documentMargin()));
  const QSize wanted(metrics.horizontalAdvance(QString(columns, QLatin1Char('0'))) +
                         view_->verticalScrollBar()->sizeHint().width() + frame,
                     metrics.lineSpacing() * rows + frame);
  resize(wanted.boundedTo(screen()->availableSize()));
}

void CommandConsole::startProgram(const DriveTable& drives, const std::string& workingFolder) {
  const auto path = drives.toHost(command_.program);
  int systemError = path ? EINVAL : ENOENT;
  if (path) {
    const ChildSettings settings = settingsOf(*path, command_, workingFolder);
    auto started = canBePassed(settings) ? TerminalProcess::start(settings, systemError) : std::nullopt;
    if (started) program_.emplace(std::move(*started));
  }
  if (!program_)
    return pause(shownName(command_.program) +
                 " cannot be started: " + std::generic_category().message(systemError) + ".");
  phase_ = Phase::Running;
  output_ = std::make_unique<QSocketNotifier>(program_->outputDescriptor(), QSocketNotifier::Read);
  end_ = std::make_unique<QSocketNotifier>(program_->endDescriptor(), QSocketNotifier::Read);
  connect(output_.get(), &QSocketNotifier::activated, this, &CommandConsole::readOutput);
  connect(end_.get(), &QSocketNotifier::activated, this, &CommandConsole::programEnded);
}

void CommandConsole::readOutput() {
  std::array<char, 1 << 16> buffer;
  const std::size_t size = program_->read(buffer.data(), buffer.size());
  text_.feed({buffer.data(), size});
  if (!showing_.isActive()) showing_.start();
}

void CommandConsole::readToTheEnd() {
  std::array<char, 1 << 12> buffer;
  for (int i = 0; i < readsBehindTheEnd; ++i) {
    const std::size_t size = program_->read(buffer.data(), buffer.size());
    if (size == 0) return;
    text_.feed({buffer.data(), size});
  }
}

void CommandConsole::programEnded() {
  end_->setEnabled(false);
  output_->setEnabled(false);
  readToTheEnd();
  const ProgramEnd end = program_->end();
  constexpr int signalled = 128;
  exitStatus_ = end.signal == 0 ? end.status : signalled + end.signal;
  pause(endLine(shownName(command_.name()), end));
}

void CommandConsole::pause(const std::string& line) {
  phase_ = Phase::Paused;
  text_.startLine();
  text_.feed(line + '\n' + pauseLine);
  showLines();
}

void CommandConsole::showLines() {
  const std::string lines = text_.takeLines();
  QScrollBar* const bar = view_->verticalScrollBar();
  const bool follows = bar->value() == bar->maximum();
  QTextCursor last(view_->document());
  last.movePosition(QTextCursor::End);
  last.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
  last.insertText(QString::fromStdString(lines));
  if (follows) bar->setValue(bar->maximum());
}

bool CommandConsole::keyPressed(const QKeyEvent& key) {
  if (!isRunning() && key.matches(QKeySequence::Copy) && view_->textCursor().hasSelection()) return false;
  if (phase_ == Phase::Staying || isModifier(key.key())) return false;
  if (isRunning()) {
    const std::string bytes = bytesOf(key);
    program_->type(bytes);
    return !bytes.empty();
  }
  if (key.isAutoRepeat()) return true;  // was pressed for the program
  if (!command_.staysOpen) return close();
  phase_ = Phase::Staying;
  view_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_.feed(stayingLine);
  showLines();
  return true;
}

bool CommandConsole::eventFilter(QObject* watched, QEvent* event) {
  if (watched == view_ && event->type() == QEvent::KeyPress)
    return keyPressed(static_cast<const QKeyEvent&>(*event));
  if (watched == view_ && event->type() == QEvent::InputMethod && isRunning())
    program_->type(static_cast<const QInputMethodEvent&>(*event).commitString().toStdString());
  return QWidget::eventFilter(watched, event);
}

void CommandConsole::closeEvent(QCloseEvent* event) {
  if (!isRunning() && !stopping_.isActive()) {
    event->accept();
    emit closed();
    return;
  }
  event->ignore();
  if (asking_ || stopping_.isActive()) return;
  asking_ = true;
  // Not in here: while this event lasts, an end signal could not close the window.
  QMetaObject::invokeMethod(this, &CommandConsole::askToStop, Qt::QueuedConnection);
}

void CommandConsole::askToStop() {
  const std::string question = command_.name() + " is still running. Stop it?";
  const BoxAnswer answer = messageBox(question, command_.title(), BoxIcon::Exclamation, BoxButtons::YesNo);
  asking_ = false;
  if (answer == BoxAnswer::Yes) stop();
}

void CommandConsole::stop() {
  if (program_) program_->signalSession(SIGHUP);
  stopDeadline_.setRemainingTime(stopTime);
  stopping_.start();
}

void CommandConsole::closeOnceEnded() {
  if (program_ && program_->sessionRuns() && !stopDeadline_.hasExpired()) return;
  stopping_.stop();
  if (program_) program_->signalSession(SIGKILL);
  if (isRunning()) programEnded();
  close();
}

}  // namespace platform::desktop
