#include "tools/a11y_bus.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QElapsedTimer>

namespace a11y {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* action = "org.a11y.atspi.Action";
constexpr const char* value = "org.a11y.atspi.Value";
constexpr const char* text = "org.a11y.atspi.Text";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* root = "/org/a11y/atspi/accessible/root";
constexpr const char* registry = "org.a11y.atspi.Registry";
constexpr int patience = 5000;  // ms

struct Reference {
  QString service, path;
};

QList<Reference> references(const QDBusArgument& list) {
  QList<Reference> all;
  list.beginArray();
  while (!list.atEnd()) {
    Reference one;
    QDBusObjectPath path;
    list.beginStructure();
    list >> one.service >> path;
    list.endStructure();
    one.path = path.path();
    all.append(one);
  }
  list.endArray();
  return all;
}

QDBusArgument listOf(const QVariant& answer) { return answer.value<QDBusArgument>(); }
bool isList(const QVariant& answer) { return answer.canConvert<QDBusArgument>(); }

}  // namespace

QDBusMessage Bus::call(const QString& service, const QString& path, const char* interface, const char* method,
                       const QVariantList& arguments) const {
  QDBusMessage message =
      QDBusMessage::createMethodCall(service, path, QLatin1String(interface), QLatin1String(method));
  message.setArguments(arguments);
  return bus_.call(message, QDBus::BlockWithGui, patience);
}

QVariant Bus::ask(const QString& path, const char* interface, const char* method,
                  const QVariantList& arguments) const {
  return call(program_, path, interface, method, arguments).arguments().value(0);
}

QVariant Bus::property(const QString& path, const char* interface, const char* name) const {
  const QVariant answer =
      ask(path, "org.freedesktop.DBus.Properties", "Get", {QLatin1String(interface), QLatin1String(name)});
  return answer.value<QDBusVariant>().variant();
}

bool Bus::connect() {
  const QDBusMessage address = QDBusConnection::sessionBus().call(
      QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                     QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
  bus_ = QDBusConnection::connectToBus(address.arguments().value(0).toString(), QStringLiteral("a11y_walk"));
  if (!bus_.isConnected()) return false;
  QElapsedTimer waited;
  for (waited.start(); program_.isEmpty() && waited.elapsed() < patience;) {
    QApplication::processEvents(QEventLoop::AllEvents, 20);
    const QVariant programs =
        call(QLatin1String(registry), QLatin1String(root), accessible, "GetChildren").arguments().value(0);
    const QList<Reference> found = isList(programs) ? references(listOf(programs)) : QList<Reference>();
    if (!found.isEmpty()) program_ = found.front().service;  // ours is the only one on this bus
  }
  return !program_.isEmpty();
}

QStringList Bus::children(const QString& path) const {
  QStringList paths;
  const QVariant answer = ask(path, accessible, "GetChildren");
  if (!isList(answer)) return paths;
  for (const Reference& one : references(listOf(answer))) paths.append(one.path);
  return paths;
}

QStringList Bus::windows() const { return children(QLatin1String(root)); }

QStringList Bus::actions(const QString& path) const {
  QStringList names;
  const QVariant answer = ask(path, action, "GetActions");
  if (!isList(answer)) return names;
  const QDBusArgument list = listOf(answer);
  list.beginArray();
  while (!list.atEnd()) {
    QString name, description, keys;
    list.beginStructure();
    list >> name >> description >> keys;
    list.endStructure();
    names.append(name);
  }
  list.endArray();
  return names;
}

bool Bus::act(const QString& path, const QString& name) const {
  const qsizetype index = actions(path).indexOf(name);
  return index >= 0 && ask(path, action, "DoAction", {static_cast<int>(index)}).toBool();
}

QStringList Bus::labels(const QString& path) const {
  constexpr uint labelFor = 1, labelledBy = 2;  // Qt says either of a control
  QStringList names;
  const QVariant answer = ask(path, accessible, "GetRelationSet");
  if (!isList(answer)) return names;
  const QDBusArgument list = listOf(answer);
  QStringList paths;
  list.beginArray();
  while (!list.atEnd()) {
    uint kind = 0;
    list.beginStructure();
    list >> kind;
    const QList<Reference> others = references(list);
    list.endStructure();
    for (const Reference& one : others)
      if (kind == labelFor || kind == labelledBy) paths.append(one.path);
  }
  list.endArray();
  for (const QString& one : paths)
    if (ask(one, accessible, "GetRole").toUInt() == label)  // a frame around it says more, not something else
      names.append(property(one, accessible, "Name").toString());
  return names;
}

Node Bus::read(const QString& path, const QStringList& interfaces) const {
  Node node;
  node.path = path;
  node.name = property(path, accessible, "Name").toString();
  node.description = property(path, accessible, "Description").toString();
  node.role = ask(path, accessible, "GetRole").toUInt();
  if (interfaces.contains(QLatin1String(action))) node.actions = actions(path);
  if (interfaces.contains(QLatin1String(value)))
    node.value = property(path, value, "CurrentValue").toDouble();
  if (interfaces.contains(QLatin1String(text))) node.text = ask(path, text, "GetText", {0, -1}).toString();
  if (node.role == tableCell || node.role == treeItem) {
    const QVariant place = ask(path, component, "GetExtents", {0U});
    int left = 0;
    if (isList(place)) {
      const QDBusArgument rectangle = listOf(place);
      rectangle.beginStructure();
      rectangle >> left >> node.top;
      rectangle.endStructure();
    }
  }
  return node;
}

QList<Node> Bus::below(const QString& path) const {
  QList<Node> nodes;
  const QVariant bits = ask(path, accessible, "GetState");
  const QList<uint> halves = qdbus_cast<QList<uint>>(bits);
  const quint64 states = halves.value(0) | static_cast<quint64>(halves.value(1)) << 32;
  if ((states >> showing & 1) == 0) return nodes;
  Node node = read(path, ask(path, accessible, "GetInterfaces").toStringList());
  node.states = states;
  if (node.has(focusable)) node.labels = labels(path);
  nodes.append(node);
  for (const QString& child : children(path)) {
    QList<Node> inner = below(child);
    if (!inner.isEmpty()) inner.front().container = path;
    nodes.append(inner);
  }
  return nodes;
}

}  // namespace a11y
