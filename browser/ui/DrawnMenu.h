#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

class QAbstractButton;

namespace browser {

/// A pop-up menu that draws itself: a borderless window whose entries light up under the mouse or the
/// keyboard's cursor. One that an entry of another opens stands to that entry's right and leaves the other in
/// place. It closes when it loses the focus, or at a click outside; what it opened closes with it.
///
/// Entries are buttons `mnuRightClick_N`; who opens the menu wires them. It deletes itself once it is closed.
class DrawnMenu : public QWidget {
  Q_OBJECT

 public:
  struct Entry {
    int index = 0;
    const char* caption = "";
    int top = 0;                  ///< twips
    bool byKeys = true;           ///< the arrow keys go there
    bool checked = false;         ///< shows its `imageCheck_N`
    const char* arrow = nullptr;  ///< name of the picture that tells of a cascade
  };
  static constexpr int none = 100;
  static constexpr int cascadeWidth = 1500;  ///< twips

  void openAt(QPoint corner);                   ///< global pixels; moved where it would leave the screen
  int menuIndex() const { return menuIndex_; }  ///< of the entry that is lit, or `none`
  double scale() const { return scale_; }       ///< pixels a twip
  void closeAll();                              ///< with all that opened it

 protected:
  /// `opener`: the menu that it cascades from, or nullptr. `width` and separators are in twips.
  DrawnMenu(const char* name, std::vector<Entry> entries, int width, std::vector<int> separators,
            QWidget* parent, DrawnMenu* opener = nullptr);

  /// An entry was lit by the mouse, or Right was pressed on it.
  virtual void entered(int /*index*/) {}
  void openBeside(DrawnMenu& menu, int index);  ///< at the right of an entry
  QRect rectOf(int index) const;

  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void addEntry(const Entry& entry, int width);
  QAbstractButton* button(int index) const;
  DrawnMenu* menuAt(QPoint global);
  int entryAt(QPoint local) const;
  void light(int index);
  void step(int by);
  void perform(int index);
  void focusMoved();

  std::vector<Entry> entries_;
  std::vector<int> separators_;
  DrawnMenu* opener_;
  double scale_ = 1;
  int menuIndex_ = none;
};

}  // namespace browser
