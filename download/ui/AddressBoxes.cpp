#include "download/ui/AddressBoxes.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

#include "platform/desktop/Text.h"

namespace download {
namespace {

using platform::desktop::fromControl;
using platform::desktop::toControl;

constexpr int octetLength = 3;

/// The full stop of the main keys, and the key in its place on the numeric pad, whatever it types.
bool isDot(const QKeyEvent& event) {
  return event.key() == Qt::Key_Period ||
         (event.key() == Qt::Key_Comma && event.modifiers().testFlag(Qt::KeypadModifier));
}

}  // namespace

AddressBoxes::AddressBoxes(std::array<QLineEdit*, 4> boxes) : boxes_(boxes) {
  for (QLineEdit* box : boxes_) {
    box->setMaxLength(octetLength);
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + octetLength * 2);
    box->installEventFilter(this);
  }
  // A whole address has to get in before it can be told; more than an octet is cut at once.
  boxes_.front()->setMaxLength(std::numeric_limits<std::int16_t>::max());
  connect(boxes_.front(), &QLineEdit::textChanged, this, &AddressBoxes::firstChanged);
}

Address AddressBoxes::address() const {
  Address address;
  std::transform(boxes_.begin(), boxes_.end(), address.begin(),
                 [](const QLineEdit* box) { return fromControl(box->text()); });
  return address;
}

void AddressBoxes::fill(const Address& address) {
  for (std::size_t i = 0; i < boxes_.size(); ++i) boxes_[i]->setText(toControl(address[i]));
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

/// The address that was pasted, alone or into what the box held.
std::optional<Address> AddressBoxes::pastedInto(const QString& text) {
  for (const auto mode : {QClipboard::Clipboard, QClipboard::Selection}) {
    const QString pasted = QGuiApplication::clipboard()->text(mode).trimmed();
    if (const auto whole = wholeAddress(fromControl(pasted)); whole && text.contains(pasted)) return whole;
  }
  return wholeAddress(fromControl(text));
}

void AddressBoxes::firstChanged(const QString& text) {
  if (text.size() <= octetLength) {
    first_ = text;
  } else if (const auto whole = pastedInto(text)) {
    fill(*whole);
  } else {
    boxes_.front()->setText(first_.size() == octetLength ? first_ : text.left(octetLength));
  }
}

}  // namespace download
