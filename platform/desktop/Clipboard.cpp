#include "platform/desktop/Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QList>
#include <QMimeData>
#include <QStringList>
#include <QSysInfo>
#include <QUrl>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/desktop/Text.h"

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

/// Each ended by a NUL, and the list by one more.
std::vector<std::string> pathsOf(std::string_view list) {
  std::vector<std::string> paths;
  while (!list.empty() && list.front() != '\0') {
    paths.emplace_back(list.substr(0, list.find('\0')));
    list.remove_prefix(std::min(list.size(), paths.back().size() + 1));
  }
  return paths;
}

/// Empty when one of the paths names nothing here.
QList<QUrl> addresses(const DriveTable& drives, const std::vector<std::string>& paths) {
  QList<QUrl> all;
  for (const std::string& path : paths) {
    const std::optional<std::string> host = drives.toHost(path);
    if (!host) return {};
    all.append(addressOf(*host));
  }
  return all;
}

QByteArray copiedFiles(const QList<QUrl>& urls) {
  QByteArray text = "copy";
  for (const QUrl& url : urls) text += '\n' + url.toEncoded();
  return text;
}

bool offer(std::unique_ptr<QMimeData> files) {
  QClipboard* const clipboard = QGuiApplication::clipboard();
  if (!files || clipboard == nullptr) return false;
  const QList<QUrl> urls = files->urls();
  files->setData(QStringLiteral("x-special/gnome-copied-files"), copiedFiles(urls));
  clipboard->setMimeData(files.release());
  const QMimeData* const held = clipboard->mimeData();
  return held != nullptr && held->urls() == urls;
}

}  // namespace

std::unique_ptr<QMimeData> fileOffer(const DriveTable& drives, const std::vector<std::string>& paths) {
  const QList<QUrl> urls = addresses(drives, paths);
  if (urls.isEmpty()) return nullptr;
  auto data = std::make_unique<QMimeData>();
  data->setUrls(urls);
  return data;
}

std::vector<std::string> offeredFiles(const DriveTable& drives, const QMimeData& offer) {
  std::vector<std::string> paths;
  for (const QUrl& url : offer.urls()) {
    const QString host = url.host();
    const bool here = host.isEmpty() || host == QLatin1String("localhost") ||
                      host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
    std::string path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    if (url.isLocalFile() && here && path.starts_with('/') && path.find('\0') == path.npos)
      paths.push_back(drives.toWindows(path));
  }
  return paths;
}

bool offerFiles(const DriveTable& drives, std::string_view block) {
  return offer(fileOffer(drives, pathsOf(fileList(block))));
}

bool copyFiles(const DriveTable& drives, const std::vector<std::string>& paths) {
  auto files = fileOffer(drives, paths);
  QStringList lines;
  for (const std::string& path : paths) lines.append(toControl(path));
  if (files) files->setText(lines.join(QLatin1Char('\n')));
  return offer(std::move(files));
}

bool copyText(const QString& text) {
  QClipboard* const clipboard = QGuiApplication::clipboard();
  if (clipboard != nullptr) clipboard->setText(text);
  return clipboard != nullptr;
}

}  // namespace platform::desktop
