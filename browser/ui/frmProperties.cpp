#include "browser/ui/frmProperties.h"

#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "browser/PropertiesLayout.h"
#include "browser/ui/ApplyLayout.h"
#include "browser/ui/NumberTexts.h"
#include "platform/desktop/Text.h"
#include "ui_frmProperties.h"

namespace browser {
namespace {

using platform::desktop::toShown;

constexpr int countAfter = 200;  // milliseconds
constexpr int lookEvery = 30;
constexpr int besideWindow = 480;  // twips of the screen that a wide window leaves

/// Qt takes "[*]" in a title for a mark of its own.
QString titleText(const std::string& title) {
  return toShown(title).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

}  // namespace

frmProperties::frmProperties(const runtime::Services& services, const PropertiesRecord& record,
                             std::vector<std::string> items, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmProperties>()),
      drives_(services.system.drives),
      items_(std::move(items)),
      scale_(pixelsPerTwip(*this)),
      tmrSize_(new QTimer(this)),
      look_(new QTimer(this)) {
  ui_->setupUi(this);
  setWindowTitle(titleText(record.propTitle));
  ui_->lblInfo->setText(toShown(record.propInfo));
  setValue(ui_->lblLocationTitle, ui_->lblLocation, record.propLocation);
  setValue(ui_->lblSizeTitle, ui_->lblSize, platform::desktop::fromControl(ui_->lblSize->text()));
  setValue(ui_->lblModifiedTitle, ui_->lblModified,
           record.propModified ? locale_.dateTimeText(*record.propModified) : "");
  setValue(ui_->lblPermissionsTitle, ui_->lblPermissions, record.propPermissions);
  doLayout();
  ui_->cmdOK->setFocus();
  connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(look_, &QTimer::timeout, this, &frmProperties::showSize);
  connect(tmrSize_, &QTimer::timeout, this, &frmProperties::tmrSize_Timer);
  tmrSize_->setObjectName(QStringLiteral("tmrSize"));
  tmrSize_->setSingleShot(true);
  tmrSize_->start(countAfter);
}

frmProperties::~frmProperties() = default;

void frmProperties::setValue(QLabel* title, QLabel* value, const std::string& text) {
  value->setText(toShown(text));
  value->setAccessibleName(title->text() + QLatin1Char(' ') + value->text());
}

void frmProperties::doLayout() {
  const auto twips = [this](const QLabel* label) {
    return static_cast<int>(std::ceil(label->sizeHint().width() / scale_));
  };
  const auto widthOf = [&](const QLabel* label) {
    return label->text().isEmpty() ? std::nullopt : std::optional(twips(label));
  };
  const int most = static_cast<int>(screen()->availableGeometry().width() / scale_) - besideWindow;
  const PropertiesLayout layout =
      browser::doLayout({widthOf(ui_->lblInfo), widthOf(ui_->lblLocation), twips(ui_->lblSize),
                         widthOf(ui_->lblModified), widthOf(ui_->lblPermissions)},
                        most);
  for (QWidget* const control : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
    control->setVisible(layout.rects.contains(control->objectName().toStdString()));
  applyRects(*this, layout.rects, scale_);
  const QSize least(static_cast<int>(std::lround(layout.width * scale_)),
                    static_cast<int>(std::lround(layout.height * scale_)));
  setMinimumWidth(least.width());
  setFixedHeight(least.height());
  resize(isVisible() ? std::max(width(), least.width()) : least.width(), least.height());
  placeSeparator();
}

void frmProperties::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  placeSeparator();
}

void frmProperties::placeSeparator() {
  const int twips = static_cast<int>(std::lround(width() / scale_));
  ui_->Line1->resize(static_cast<int>(std::lround(separatorWidth(twips) * scale_)), ui_->Line1->height());
}

void frmProperties::tmrSize_Timer() {
  count_.emplace(drives_, std::move(items_));
  look_->start(lookEvery);
}

/// Threads that count faster than anybody reads are looked at now and then.
void frmProperties::showSize() {
  const CountedSize size = count_->soFar();
  if (size.ended) look_->stop();
  if (size.items == shown_) return;
  shown_ = size.items;
  setValue(ui_->lblSizeTitle, ui_->lblSize, formatFSOSize(size.bytes, numberTexts(locale_)));
  if (ui_->lblSize->sizeHint().width() > ui_->lblSize->width()) doLayout();
}

void frmProperties::done(int result) {
  tmrSize_->stop();
  look_->stop();
  count_.reset();
  QDialog::done(result);
}

}  // namespace browser
