#pragma once

#include <QStringDecoder>
#include <QWidget>
#include <string_view>

class QPlainTextEdit;

namespace platform::desktop {

/// The console of a visible run: shows a tool's output as it comes. While it is open the other windows take
/// no input. Closing it only notes that; ending the tool is its user's.
class ConsoleWindow : public QWidget {
  Q_OBJECT

 public:
  explicit ConsoleWindow(std::string_view title, QWidget* parent = nullptr);
  void append(std::string_view bytes);  ///< UTF-8; a character or a CR LF may be split between two calls
  bool wasClosed() const { return wasClosed_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QPlainTextEdit* output_;
  QStringDecoder decoder_{QStringDecoder::Utf8};
  bool endsInReturn_ = false;  // a CR came last; a line feed that follows belongs to it
  bool wasClosed_ = false;
};

}  // namespace platform::desktop
