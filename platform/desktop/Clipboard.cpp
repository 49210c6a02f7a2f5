#include "platform/desktop/Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QList>
#include <QMimeData>
#include <QUrl>
#include <cstdint>
#include <optional>
#include <string>

namespace platform::desktop {
namespace {

constexpr std::size_t offsetBytes = 4;

/// The text behind the header; empty when there is none.
std::string_view fileList(std::string_view block) {
  if (block.size() < offsetBytes) return {};
  std::size_t offset = 0;
  for (std::size_t i = offsetBytes; i-- > 0;) offset = offset << 8U | static_cast<std::uint8_t>(block[i]);
  return offset < block.size() ? block.substr(offset) : std::string_view();
}

/// The host's bytes stay: a name that is no UTF-8 text survives in an address.
QUrl addressOf(const std::string& hostPath) {
  return QUrl::fromEncoded("file://" + QByteArray::fromStdString(hostPath).toPercentEncoding("/"));
}

/// Empty when one of the paths names nothing here.
QList<QUrl> addresses(const DriveTable& drives, std::string_view block) {
  QList<QUrl> all;
  std::string_view list = fileList(block);
  while (!list.empty() && list.front() != '\0') {
    const std::string_view path = list.substr(0, list.find('\0'));
    const std::optional<std::string> host = drives.toHost(path);
    if (!host) return {};
    all.append(addressOf(*host));
    list.remove_prefix(std::min(list.size(), path.size() + 1));
  }
  return all;
}

QByteArray copiedFiles(const QList<QUrl>& urls) {
  QByteArray text = "copy";
  for (const QUrl& url : urls) text += '\n' + url.toEncoded();
  return text;
}

}  // namespace

bool offerFiles(const DriveTable& drives, std::string_view block) {
  const QList<QUrl> urls = addresses(drives, block);
  QClipboard* const clipboard = QGuiApplication::clipboard();
  if (urls.isEmpty() || clipboard == nullptr) return false;
  auto* data = new QMimeData;  // the clipboard's from setMimeData on
  data->setUrls(urls);
  data->setData(QStringLiteral("x-special/gnome-copied-files"), copiedFiles(urls));
  clipboard->setMimeData(data);
  const QMimeData* const held = clipboard->mimeData();
  return held != nullptr && held->urls() == urls;
}

}  // namespace platform::desktop
