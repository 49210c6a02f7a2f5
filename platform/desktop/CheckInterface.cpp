#include "platform/desktop/CheckInterface.h"

#include <QAccessibleWidget>
#include <QCheckBox>
#include <QRadioButton>

namespace platform::desktop {
namespace {

/// A caption without its marks for keys.
QString spoken(const QString& caption) {
  QString text;
  for (qsizetype i = 0; i < caption.size(); ++i) {
    if (caption[i] == QLatin1Char('&') && ++i == caption.size()) break;
    text += caption[i];
  }
  return text;
}

class CheckInterface : public QAccessibleWidget {
 public:
  explicit CheckInterface(QAbstractButton* button)
      : QAccessibleWidget(button, button->autoExclusive() ? QAccessible::RadioButton : QAccessible::CheckBox),
        button_(button) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && own.isEmpty() ? spoken(button_->text()) : own;
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = true;
    state.checked = button_->isChecked();
    const auto* const box = qobject_cast<QCheckBox*>(button_);
    state.checkStateMixed = box != nullptr && box->checkState() == Qt::PartiallyChecked;
    state.pressed = button_->isDown();
    return state;
  }
  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (button_->isEnabled()) names.prepend(toggleAction());
    return names;
  }
  void doAction(const QString& name) override {
    if (name == toggleAction() || name == pressAction()) return button_->click();
    QAccessibleWidget::doAction(name);
  }

 private:
  QAbstractButton* button_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  if (qobject_cast<QCheckBox*>(object) == nullptr && qobject_cast<QRadioButton*>(object) == nullptr)
    return nullptr;
  return new CheckInterface(qobject_cast<QAbstractButton*>(object));
}

}  // namespace

void makeTogglesClicks() { QAccessible::installFactory(makeInterface); }  // Qt ignores one that it has

}  // namespace platform::desktop
