#include "download/ui/AddressBoxes.h"

#include <QKeyEvent>
#include <QToolTip>
#include <algorithm>

#include "platform/desktop/Text.h"

namespace download {
namespace {

using platform::desktop::fromControl;
using platform::desktop::toControl;

constexpr int octetLength = 3;
constexpr const char* noAddress = "There is no IP address in what was pasted";

/// The full stop of the main keys, and the key in its place on the numeric pad, whatever it types.
bool isDot(const QKeyEvent& event) {
  return event.key() == Qt::Key_Period ||
         (event.key() == Qt::Key_Comma && event.modifiers().testFlag(Qt::KeypadModifier));
}

}  // namespace

AddressBoxes::AddressBoxes(std::array<AddressBox*, 4> boxes) : boxes_(boxes) {
  for (AddressBox* box : boxes_) {
    box->setMaxLength(octetLength);
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + octetLength * 2);
    box->installEventFilter(this);
    connect(box, &AddressBox::pasted, this, [this, box](const QString& text) { pasted(*box, text); });
  }
}

Address AddressBoxes::address() const {
  Address address;
  std::transform(boxes_.begin(), boxes_.end(), address.begin(),
                 [](const AddressBox* box) { return fromControl(box->text()); });
  return address;
}

void AddressBoxes::fill(const Address& address) {
  for (std::size_t i = 0; i < boxes_.size(); ++i) boxes_[i]->setText(toControl(address[i]));
}

void AddressBoxes::setEnabled(bool enabled) {
  for (AddressBox* box : boxes_) box->setEnabled(enabled);
}

bool AddressBoxes::focusFirstEmpty() {
  const auto empty =
      std::find_if(boxes_.begin(), boxes_.end(), [](const AddressBox* box) { return box->text().isEmpty(); });
  if (empty == boxes_.end()) return false;
  (*empty)->setFocus(Qt::OtherFocusReason);
  return true;
}

bool AddressBoxes::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyRelease && isDot(static_cast<const QKeyEvent&>(*event))) {
    const auto box = std::find(boxes_.begin(), boxes_.end(), watched);
    if (box != boxes_.end()) dotReleased(static_cast<std::size_t>(box - boxes_.begin()));
  }
  return false;
}

void AddressBoxes::dotReleased(std::size_t index) {
  QString text = boxes_[index]->text().remove(QLatin1Char('.'));
  boxes_[index]->setText(text.isEmpty() ? QStringLiteral("0") : text);
  if (index + 1 == boxes_.size()) return;
  boxes_[index + 1]->setFocus(Qt::TabFocusReason);
  boxes_[index + 1]->selectAll();
}

void AddressBoxes::pasted(AddressBox& box, const QString& text) {
  const QString bare = text.trimmed();
  if (isOctet(fromControl(bare))) return box.insert(bare);
  const auto found = addressIn(fromControl(bare));
  if (!found) {
    QToolTip::showText(box.mapToGlobal(QPoint(0, box.height())), QString::fromLatin1(noAddress), &box);
    return;
  }
  fill(found->address);
  if (!found->port.empty()) emit portPasted(toControl(found->port));
}

}  // namespace download
