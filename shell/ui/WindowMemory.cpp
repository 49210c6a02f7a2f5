#include "shell/ui/WindowMemory.h"

#include <QScreen>
#include <QStyle>

#include "browser/ui/ApplyLayout.h"
#include "platform/desktop/ColumnWidths.h"

namespace shell {
namespace {

constexpr const char* placeName = "windowPlace";  // what Qt makes of it, in base 64
constexpr const char* dividerName = "divider";    // twips
constexpr const char* columnsName = "columnWidths";

}  // namespace

void WindowMemory::restore() {
  restorePlace();
  if (const auto divider = runtime::storedNumber(settings_.look(dividerName)))
    layout_.setDividerPlace(*divider);
  platform::desktop::setColumnWidths(columns_, settings_.look(columnsName));
}

/// The window manager's frame has no size yet: about a title bar.
void WindowMemory::restorePlace() {
  if (window_.restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(settings_.look(placeName)))))
    return;
  const int title = window_.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window_);
  const QSize room = window_.screen()->availableSize() - QSize(0, title);
  window_.resize(browser::startSize(browser::pixelsPerTwip(window_)).boundedTo(room));
}

void WindowMemory::keep() {
  settings_.setLook(placeName, window_.saveGeometry().toBase64().toStdString());
  settings_.setLook(dividerName, std::to_string(layout_.dividerPlace()));
  settings_.setLook(columnsName, platform::desktop::columnWidths(columns_));
}

}  // namespace shell
