#include "platform/desktop/TcpClient.h"

#include <linux/sockios.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <QHostAddress>
#include <QHostInfo>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace platform::desktop {
namespace {

constexpr int noLookup = -1;
// Little is kept by the system, so that a slow receiver is noticed and takes what waits in seconds; but more
// than is sent until a receiver's delayed acknowledgement (40 ms).
constexpr int sendBuffer = 64 * 1024;  // bytes

bool isDigitsAndDots(const QString& host) {
  return std::all_of(host.begin(), host.end(), [](QChar c) { return c.isDigit() || c == QLatin1Char('.'); });
}

}  // namespace

DesktopTcpClient::DesktopTcpClient(QObject* parent) : TcpClient(parent) {}

DesktopTcpClient::~DesktopTcpClient() { close(); }

void DesktopTcpClient::connectTo(const QString& host, const QString& port) {
  close();
  error_ = {};
  bool isPort = false;
  const std::uint16_t number = port.toUShort(&isPort);
  if (!isPort || number == 0) return fail(EINVAL);
  state_ = TcpState::Connecting;
  const QHostAddress address(host);
  if (address.protocol() == QAbstractSocket::IPv4Protocol) return connectToAddress(address, number);
  isDigitsAndDots(host) ? fail(EINVAL) : lookUp(host, number);
}

void DesktopTcpClient::lookUp(const QString& host, std::uint16_t port) {
  lookup_ = QHostInfo::lookupHost(host, this, [this, port](const QHostInfo& found) {
    if (found.lookupId() != lookup_) return;
    lookup_ = noLookup;
    for (const QHostAddress& address : found.addresses())
      if (address.protocol() == QAbstractSocket::IPv4Protocol) return connectToAddress(address, port);
    fail(EHOSTUNREACH);
  });
}

void DesktopTcpClient::connectToAddress(const QHostAddress& host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(host.toIPv4Address());
  socket_ = Descriptor(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  setsockopt(socket_.get(), SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
  if (::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
      errno != EINPROGRESS)
    return fail(errno);
  readNotifier_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
  readNotifier_->setEnabled(false);
  writeNotifier_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Write);
  connect(readNotifier_.get(), &QSocketNotifier::activated, this, &DesktopTcpClient::readable);
  connect(writeNotifier_.get(), &QSocketNotifier::activated, this, &DesktopTcpClient::writable);
}

bool DesktopTcpClient::send(std::string_view bytes) {
  if (state_ != TcpState::Connected) {
    // What ended the connection is the reason, where it is known.
    if (error_.number == 0) error_ = {ENOTCONN, std::strerror(ENOTCONN)};
    close();
    return false;
  }
  pending_.append(bytes);
  writeNotifier_->setEnabled(true);
  return flush();
}

void DesktopTcpClient::close() {
  if (lookup_ != noLookup) QHostInfo::abortHostLookup(std::exchange(lookup_, noLookup));
  // A notifier may be the one that calls: it goes when its call is over.
  for (auto* notifier : {&readNotifier_, &writeNotifier_}) {
    if (*notifier == nullptr) continue;
    (*notifier)->setEnabled(false);
    notifier->release()->deleteLater();
  }
  // What was not taken yet is given up, too: the other side sees a reset, not an end.
  constexpr linger atOnce{1, 0};
  if (unacknowledged() > 0) setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  socket_.closeNow();
  pending_.clear();
  state_ = TcpState::Closed;
}

std::int64_t DesktopTcpClient::unsent() {
  if (socket_) {
    if (const int failed = pendingError(); failed != 0) fail(failed);
  }
  const int waiting = unacknowledged();
  return waiting < 0 ? -1 : static_cast<std::int64_t>(pending_.size()) + waiting;
}

/// One piece a turn of the event loop: a sender that does not stop cannot hold it up.
void DesktopTcpClient::readable() {
  std::array<char, 4096> buffer;
  const ssize_t count = recv(socket_.get(), buffer.data(), buffer.size(), 0);
  if (count > 0) {
    received_.append(buffer.data(), static_cast<std::size_t>(count));
    emit dataArrival();
  } else if (count == 0) {
    readNotifier_->setEnabled(false);
    state_ = TcpState::Closing;
    error_ = {EPIPE, std::strerror(EPIPE)};
    emit closed();
  } else if (errno != EAGAIN && errno != EINTR) {
    fail(errno);
  }
}

void DesktopTcpClient::writable() {
  if (state_ == TcpState::Connecting) return finishConnecting();
  if (!flush() || !pending_.empty()) return;
  writeNotifier_->setEnabled(false);
  emit sendComplete();
}

void DesktopTcpClient::finishConnecting() {
  if (const int failed = pendingError(); failed != 0) return fail(failed);
  state_ = TcpState::Connected;
  writeNotifier_->setEnabled(false);
  readNotifier_->setEnabled(true);
}

bool DesktopTcpClient::flush() {
  while (!pending_.empty()) {
    const ssize_t count = ::send(socket_.get(), pending_.data(), pending_.size(), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) break;
    if (count < 0) {
      fail(errno);
      return false;
    }
    pending_.erase(0, static_cast<std::size_t>(count));
  }
  return true;
}

void DesktopTcpClient::fail(int number) {
  const bool wasConnected = state_ == TcpState::Connected || state_ == TcpState::Closing;
  close();
  error_ = {number, std::strerror(number)};
  if (wasConnected) emit closed();
}

/// Bytes that the system holds; -1 without a connection.
int DesktopTcpClient::unacknowledged() const {
  int waiting = 0;
  return ioctl(socket_.get(), SIOCOUTQ, &waiting) == 0 ? waiting : -1;
}

/// The error that the system keeps for the socket; asking takes it.
int DesktopTcpClient::pendingError() const {
  int number = 0;
  socklen_t size = sizeof number;
  if (getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &number, &size) != 0) return errno;
  return number;
}

}  // namespace platform::desktop
