#include "platform/desktop/Actions.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QShortcut>
#include <QWidget>

namespace platform::desktop {

ActionTable::ActionTable(QWidget& form, Busy& busy, std::vector<Action> rows)
    : QObject(&form), form_(form), busy_(busy), rows_(std::move(rows)) {
  for (const Action& row : rows_) wire(row);
  busy_.watch(*this);
  update();
}

ActionTable::~ActionTable() { busy_.unwatch(*this); }

void ActionTable::wire(const Action& row) {
  const auto act = [this, &row] { run(row); };
  if (!row.keys.isEmpty()) {
    auto* shortcut = new QShortcut(row.keys, &form_);
    shortcut->setObjectName(QLatin1String(row.name));
    if (row.keysWithin) shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, act);
    return;
  }
  QObject* const control = form_.findChild<QObject*>(QLatin1String(row.name));
  if (control == nullptr) return qWarning("no control is named %s", row.name);
  setWhileBusy(control, row.whileBusy);
  auto* const button = qobject_cast<QAbstractButton*>(control);
  auto* const entry = qobject_cast<QAction*>(control);
  if (row.caption != nullptr && button != nullptr) button->setText(QString::fromUtf8(row.caption));
  if (row.caption != nullptr && entry != nullptr) entry->setText(QString::fromUtf8(row.caption));
  if (!row.handler) return;
  if (button != nullptr)
    connect(button, &QAbstractButton::clicked, this, act);
  else if (entry != nullptr)
    connect(entry, &QAction::triggered, this, act);
  else if (auto* const list = qobject_cast<QComboBox*>(control))
    connect(list, &QComboBox::activated, this, act);
  else if (auto* const box = qobject_cast<QLineEdit*>(control))
    connect(box, &QLineEdit::returnPressed, this, act);
}

void ActionTable::run(const Action& row) {
  if (!row.handler || (row.enabledWhen && !row.enabledWhen())) return;
  if (row.whileBusy == WhileBusy::Acts) return row.handler();
  if (row.whileBusy == WhileBusy::Remembered) {
    busy_.whenFree(row.width, [table = QPointer<ActionTable>(this), handler = row.handler] {
      if (!table.isNull()) handler();
    });
    return;
  }
  if (!busy_.held()) row.handler();
}

bool ActionTable::enabled(const Action& row) const {
  const bool shut = busy_.slow() && row.whileBusy == WhileBusy::Dropped;
  return !shut && (!row.enabledWhen || row.enabledWhen());
}

void ActionTable::update() {
  for (const Action& row : rows_) {
    QObject* const control =
        row.keys.isEmpty() ? form_.findChild<QObject*>(QLatin1String(row.name)) : nullptr;
    if (auto* const widget = qobject_cast<QWidget*>(control)) widget->setEnabled(enabled(row));
    if (auto* const entry = qobject_cast<QAction*>(control)) entry->setEnabled(enabled(row));
  }
}

}  // namespace platform::desktop
