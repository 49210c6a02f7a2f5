#pragma once

#include <QObject>
#include <array>

#include "download/Protocol.h"
#include "download/ui/AddressBox.h"

namespace download {

/// The four boxes of an address, one octet each. A full stop leads to the next box; a text with an address in
/// it that is pasted into any of them fills them all.
class AddressBoxes : public QObject {
  Q_OBJECT

 public:
  explicit AddressBoxes(std::array<AddressBox*, 4> boxes);

  Address address() const;
  void fill(const Address& address);
  void setEnabled(bool enabled);
  bool focusFirstEmpty();  ///< false when none is empty

 signals:
  void portPasted(const QString& port);  ///< with an address

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void dotReleased(std::size_t index);
  void pasted(AddressBox& box, const QString& text);

  std::array<AddressBox*, 4> boxes_;
};

}  // namespace download
