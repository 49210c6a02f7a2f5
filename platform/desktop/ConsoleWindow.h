#pragma once

#include <QStringDecoder>
#include <QWidget>
#include <string_view>

class QPlainTextEdit;

namespace platform::desktop {

/// The console of a visible run: shows a tool's output as it comes. Its "Stop" and its close box ask for the
/// run's end; it goes when its owner takes it away.
class ConsoleWindow : public QWidget {
  Q_OBJECT

 public:
  explicit ConsoleWindow(std::string_view title, QWidget* parent = nullptr);
  void append(std::string_view bytes);  ///< UTF-8; a character or a CR LF may be split between two calls

 signals:
  void stopWanted();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QPlainTextEdit* output_;
  QStringDecoder decoder_{QStringDecoder::Utf8};
  bool endsInReturn_ = false;  // a CR came last; a line feed that follows belongs to it
};

}  // namespace platform::desktop
