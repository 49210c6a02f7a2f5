#pragma once

#include <QKeySequence>
#include <QObject>
#include <functional>
#include <vector>

#include "platform/Busy.h"
#include "platform/desktop/Handlers.h"

class QWidget;

namespace platform::desktop {

/// One control of a form: what it does, and when it can be used. A row without a handler only says when the
/// control can be used; a row with keys has no control, but its name may be asked for all the same.
struct Action {
  const char*
      name;  ///< object name: a button, a menu entry, a combo box, a text box (Enter), any other widget
  std::function<void()> handler = {};
  std::function<bool()> enabledWhen = {};  ///< none: always
  WhileBusy whileBusy = WhileBusy::Dropped;
  Busy::Width width = Busy::Width::Relist;  ///< of a Remembered one
  QKeySequence keys = {};
  const char* caption = nullptr;  ///< where no .ui file holds it
  bool keysWithin = false;        ///< they act only while the form, or what is in it, has the focus
};

/// The table by which a form wires its menus, buttons and keys. While a job holds the gate a row's handler
/// does not act unless the row says so, and once the job counts as slow the control looks disabled.
class ActionTable : public QObject, private Busy::Watcher {
  Q_OBJECT

 public:
  /// Both are lent. A name that no control below the form has is a mistake of ours: a warning of Qt tells it.
  ActionTable(QWidget& form, Busy& busy, std::vector<Action> rows);
  ~ActionTable() override;

  /// Enables and disables the controls as the rows say now. To be called after what `enabledWhen` asks
  /// changed.
  void update();
  const std::vector<Action>& rows() const { return rows_; }
  bool enabled(const Action& row) const;
  void run(const Action& row);  ///< what a click on its control does

 private:
  void becameSlow() override { update(); }
  void ended() override { update(); }
  void wire(const Action& row);

  QWidget& form_;
  Busy& busy_;
  std::vector<Action> rows_;
};

}  // namespace platform::desktop
