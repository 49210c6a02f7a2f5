#pragma once

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QStringList>

namespace platform::desktop {

/// A list one entry high that is turned by its scroll bar, the wheel and the keys (arrows, Page Up and Down,
/// Home, End, letters). The entry that it shows, the one at the top, is the choice. To assistive tools it is
/// a spin box: the entry is its text, the index its value; the accessible name says what is chosen.
class ScrollList : public QAbstractScrollArea {
  Q_OBJECT
  Q_PROPERTY(QStringList entries READ entries WRITE setEntries)
  Q_PROPERTY(int topIndex READ topIndex WRITE setTopIndex NOTIFY topChanged USER true)

 public:
  explicit ScrollList(QWidget* parent = nullptr);

  const QStringList& entries() const { return entries_; }
  void setEntries(const QStringList& entries);  ///< the top index stays where it can
  int topIndex() const;                         ///< from 0; -1 when there are no entries
  void setTopIndex(int index);                  ///< the nearest entry for an index that there is not
  QString topEntry() const;                     ///< the text at the top, empty when there is none

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 signals:
  void topChanged(int index);  ///< by the user or by the program

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void showTop();
  void search(const QString& typed);

  QStringList entries_;
  QString told_;   // the entry that assistive tools last heard of
  QString typed_;  // letters typed in quick succession
  QElapsedTimer sinceTyped_;
};

}  // namespace platform::desktop
