#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

namespace platform::desktop {

/// A help file: HTML pages and pictures in one file, in which "index.html" is the contents. It is a binary
/// resource of Qt with the MD5 sum of all that (32 hexadecimal digits) behind it, and is read whole at once.
class HelpFile {
 public:
  struct Entry {
    QString title;
    QString page;
  };

  explicit HelpFile(const QString& path);
  ~HelpFile();
  HelpFile(const HelpFile&) = delete;
  HelpFile& operator=(const HelpFile&) = delete;

  const QString& problem() const { return problem_; }  ///< why it cannot be shown, in words; empty: it can
  /// Where a page is, for a text browser. `page` may begin with "/" and have an anchor behind "#"; one that
  /// there is none of is the contents.
  QUrl urlOf(const QString& page) const;
  QList<Entry> contents() const;  ///< the contents themselves, and what they lead to, in their order

 private:
  QString read(const QString& path);

  QByteArray data_;  // lent to Qt while it is registered
  bool registered_ = false;
  QString problem_;
};

}  // namespace platform::desktop
