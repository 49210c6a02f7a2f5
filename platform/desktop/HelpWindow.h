#pragma once

#include <QMainWindow>
#include <QTextDocument>

#include "platform/desktop/HelpFile.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QTextBrowser;
class QToolBar;

namespace platform::desktop {

/// The viewer of a help file: the contents at the left, a page at the right, and a bar to find words in the
/// page. Links to the web are handed to the desktop's browser; other links that lead out of the file are not
/// followed.
class HelpWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit HelpWindow(const HelpFile& file);  ///< lent for the window's life

  void showPage(const QString& page);  ///< see HelpFile::urlOf
  void comeToFront();

 private:
  void addPanes();
  QWidget* newFindBar();
  void addTools();
  void addKeys();
  void follow(const QUrl& link);
  void pageShown(const QUrl& url);
  void openFind();
  void find(QTextDocument::FindFlags direction);
  void escape();

  const HelpFile& file_;
  QListWidget* contents_ = nullptr;  // this and the others: children
  QTextBrowser* page_ = nullptr;
  QWidget* findBar_ = nullptr;
  QLineEdit* findText_ = nullptr;
  QLabel* found_ = nullptr;
};

}  // namespace platform::desktop
