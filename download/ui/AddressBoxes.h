#pragma once

#include <QObject>
#include <array>
#include <optional>

#include "download/Protocol.h"

class QLineEdit;

namespace download {

/// The four boxes of an address, one octet each. A full stop leads to the next box; a whole address that is
/// pasted into the first one fills them all.
class AddressBoxes : public QObject {
  Q_OBJECT

 public:
  explicit AddressBoxes(std::array<QLineEdit*, 4> boxes);

  Address address() const;
  void fill(const Address& address);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void dotReleased(std::size_t index);
  static std::optional<Address> pastedInto(const QString& text);
  void firstChanged(const QString& text);

  std::array<QLineEdit*, 4> boxes_;
  QString first_;  // what the first box holds, while that is no more than an octet
};

}  // namespace download
