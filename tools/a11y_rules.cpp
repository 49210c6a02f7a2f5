#include "tools/a11y_rules.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QWidget>

namespace a11y {
namespace {

QAccessibleInterface* faceOf(const QString& path) {
  return QAccessible::accessibleInterface(path.section(QLatin1Char('/'), -1).toUInt());
}

QObject* objectOf(const Node& node) {
  const QAccessibleInterface* const face = faceOf(node.path);
  return face == nullptr ? nullptr : face->object();
}

/// The name for a person who looks for it in the sources.
QString called(const Node& node) {
  const QObject* const object = objectOf(node);
  if (object == nullptr) return QStringLiteral("\"%1\" (role %2)").arg(node.name).arg(node.role);
  return object->objectName().isEmpty() ? QLatin1String(object->metaObject()->className())
                                        : object->objectName();
}

/// A caption with a mark for a key, a tag, a character's name.
bool hasMarkup(const QString& text) {
  static const QRegularExpression markup(QStringLiteral("</?[A-Za-z][^>]*>|&\\w"));
  return markup.match(text).hasMatch();
}

/// A label without the colon that leads to its control.
QString bare(QString label) {
  label = label.trimmed();
  if (label.endsWith(QLatin1Char(':'))) label.chop(1);
  return label;
}

QStringList saidWrong(const Node& node) {
  QStringList wrong;
  const bool mustSpeak = (node.has(focusable) && node.role != tableCell) || node.role == listItem;
  if (mustSpeak && node.name.trimmed().isEmpty()) wrong << QStringLiteral("no name");
  if (hasMarkup(node.name)) wrong << QStringLiteral("markup in the name: ") + node.name;
  if (hasMarkup(node.description)) wrong << QStringLiteral("markup in the description: ") + node.description;
  for (const QString& label : node.labels)
    if (node.role != comboBox && bare(label) != bare(node.name))  // Qt names that one by its text
      wrong << QStringLiteral("two names, \"%1\" and its label's \"%2\"").arg(node.name, label);
  return wrong;
}

QStringList lacks(const Node& node) {
  static const QSet<uint> acting = {checkBox, menuItem, pushButton, radioButton};
  QStringList missing;
  if (acting.contains(node.role) && node.has(enabled) && node.actions.isEmpty())
    missing << QStringLiteral("no action");
  if ((node.role == spinButton || node.role == slider) && !node.value) missing << QStringLiteral("no value");
  if (node.role == spinButton && node.text.isEmpty()) missing << QStringLiteral("no text");
  const QObject* const object = objectOf(node);
  if (object == nullptr) return missing;
  if (object->inherits("platform::desktop::ScrollList") && node.role != spinButton)
    missing << QStringLiteral("is no spin box");
  if (object->inherits("browser::Divider") && node.role != slider) missing << QStringLiteral("is no slider");
  return missing;
}

/// A tick that only turns leaves the form as it was; what is clicked acts.
QStringList togglesWrong(const Bus& bus, const Node& node) {
  auto* const button = qobject_cast<QAbstractButton*>(objectOf(node));
  if (button == nullptr || node.role != checkBox || !node.has(enabled)) return {};
  QSignalSpy clicks(button, &QAbstractButton::clicked);
  for (int times = 0; times < 2; ++times) bus.act(node.path, QStringLiteral("Toggle"));
  if (clicks.size() == 2 && button->isChecked() == node.has(checked)) return {};
  return {QStringLiteral("Toggle is no click")};
}

/// Some cells of a row are empty by nature; a row that says nothing is not read at all.
QStringList silentRows(const QList<Node>& nodes) {
  QHash<std::pair<QString, int>, bool> rows;
  for (const Node& node : nodes)
    if (node.role == tableCell || node.role == treeItem)
      rows[{node.container, node.top}] |= !node.name.trimmed().isEmpty();
  QStringList silent;
  for (auto row = rows.cbegin(); row != rows.cend(); ++row)
    if (!row.value()) {
      Node list;
      list.path = row.key().first;
      silent << called(list) + QStringLiteral(": a row without a word");
    }
  return silent;
}

}  // namespace

QStringList missingOnTheBus(const Bus& bus, QWidget& window) {
  QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(&window);
  const QString path = QStringLiteral("/org/a11y/atspi/accessible/%1").arg(QAccessible::uniqueId(face));
  const bool popsUp = window.windowType() == Qt::Popup;  // Qt leads to those by their focus alone
  if (!popsUp && !bus.windows().contains(path))
    return {QStringLiteral("the window is not among the program's")};
  const QList<Node> nodes = bus.below(path);
  QStringList missing = silentRows(nodes);
  if (nodes.size() < 2) missing << QStringLiteral("nothing shows in it");
  for (const Node& node : nodes)
    for (const QString& what : saidWrong(node) + lacks(node) + togglesWrong(bus, node))
      missing << called(node) + QStringLiteral(": ") + what;
  return missing;
}

}  // namespace a11y
