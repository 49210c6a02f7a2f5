#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QStringList>
#include <optional>

namespace a11y {

/// Numbers of the protocol's own lists (AtspiRole, AtspiStateType).
enum Role : uint {
  checkBox = 7,
  comboBox = 11,
  label = 29,
  listItem = 32,
  menuItem = 35,
  pushButton = 43,
  radioButton = 44,
  slider = 51,
  spinButton = 52,
  tableCell = 56,
  treeItem = 91
};
enum State : uint { checked = 4, enabled = 8, focusable = 11, showing = 25 };

/// What a screen reader is told of one thing in a window.
struct Node {
  bool has(State state) const { return (states >> state & 1) != 0; }

  QString path;  // on the bus
  QString name, description;
  uint role = 0;
  quint64 states = 0;
  QStringList actions;
  QStringList labels;           // names of the labels that lead to it
  std::optional<double> value;  // where it has one
  QString text;
  int top = 0;        // on the screen, pixels; of cells only
  QString container;  // path of its parent
};

/// The accessibility bus of this session, seen from outside. A call lets the program's events run until the
/// answer has come: the answer is the program's own.
class Bus {
 public:
  bool connect();               ///< once a window shows; false: there is no bus, or the program is not on it
  QStringList windows() const;  ///< paths of the program's windows, as the registry leads to them
  QList<Node> below(const QString& path) const;  ///< all that shows in a window, itself first
  bool act(const QString& path, const QString& action) const;

 private:
  QDBusMessage call(const QString& service, const QString& path, const char* interface, const char* method,
                    const QVariantList& arguments = {}) const;
  QVariant ask(const QString& path, const char* interface, const char* method,
               const QVariantList& arguments = {}) const;
  QVariant property(const QString& path, const char* interface, const char* name) const;
  QStringList children(const QString& path) const;
  QStringList actions(const QString& path) const;
  QStringList labels(const QString& path) const;
  Node read(const QString& path, const QStringList& interfaces) const;

  QDBusConnection bus_{QString()};
  QString program_;  // its name on the bus
};

}  // namespace a11y
