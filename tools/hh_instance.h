#pragma once

#include <QLocalServer>
#include <QString>
#include <functional>

namespace hh {

/// One window for a help file, on one screen of one user: who starts later hands its page to the one that is
/// there. Over a local socket: a page as a line of UTF-8; the answer is a line.
class Instance {
 public:
  /// `show` is called from the event loop with the pages of those that come later.
  Instance(const QString& helpFile, std::function<void(const QString& page)> show);

  /// True when another instance has shown the page. Else this one is there for those to come.
  bool shownByAnother(const QString& page);

 private:
  void answer();

  std::function<void(const QString& page)> show_;
  QString socket_;  // its path; empty: the user has no folder for it
  QLocalServer server_;
};

}  // namespace hh
