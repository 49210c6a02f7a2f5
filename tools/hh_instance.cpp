#include "tools/hh_instance.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>

namespace hh {
namespace {

constexpr int connectPatience = 1000;  // milliseconds
constexpr int answerPatience = 3000;
constexpr qint64 longestPage = 1000;  // bytes
constexpr const char* shown = "shown\n";

QString socketPath(const QString& helpFile) {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  if (folder.isEmpty()) return {};
  const QByteArray what = QFileInfo(helpFile).canonicalFilePath().toUtf8() + '\n' + qgetenv("DISPLAY") +
                          '\n' + qgetenv("WAYLAND_DISPLAY");
  const QByteArray sum = QCryptographicHash::hash(what, QCryptographicHash::Md5).toHex();
  return folder + QStringLiteral("/pakrune-help-") + QString::fromLatin1(sum);
}

bool handOver(const QString& socketName, const QString& page) {
  QLocalSocket socket;
  socket.connectToServer(socketName);
  if (!socket.waitForConnected(connectPatience)) return false;
  socket.write(page.toUtf8() + '\n');
  while (!socket.canReadLine())
    if (!socket.waitForReadyRead(answerPatience)) return false;
  return socket.readLine() == shown;
}

}  // namespace

Instance::Instance(const QString& helpFile, std::function<void(const QString& page)> show)
    : show_(std::move(show)), socket_(socketPath(helpFile)) {
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { answer(); });
}

/// A socket that nobody answers at is one of an instance that was killed.
bool Instance::shownByAnother(const QString& page) {
  if (socket_.isEmpty() || server_.listen(socket_)) return false;
  if (handOver(socket_, page)) return true;
  QLocalServer::removeServer(socket_);
  server_.listen(socket_);
  return false;
}

void Instance::answer() {
  QLocalSocket* const socket = server_.nextPendingConnection();
  QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
    if (socket->canReadLine()) {
      show_(QString::fromUtf8(socket->readLine(longestPage).trimmed()));
      socket->write(shown);
    } else if (socket->bytesAvailable() > longestPage) {
      socket->abort();
    }
  });
}

}  // namespace hh
