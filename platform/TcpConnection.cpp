#include "platform/TcpConnection.h"

#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <optional>
#include <system_error>

#include "platform/BackgroundThread.h"
#include "platform/InternetAddress.h"

namespace platform {
namespace {

using State = ConnectionState;

// Little is kept by the system, so that a slow receiver is noticed and takes what waits in seconds; but more
// than is sent until a receiver's delayed acknowledgement (40 ms).
constexpr int sendBuffer = 64 * 1024;  // bytes

bool isDigitsAndDots(const std::string& host) { return host.find_first_not_of("0123456789.") == host.npos; }

std::optional<std::uint32_t> firstAddress(const std::string& name) {
  addrinfo wanted{};
  wanted.ai_family = AF_INET;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(name.c_str(), nullptr, &wanted, &found) != 0) return std::nullopt;
  const auto* const address = reinterpret_cast<const sockaddr_in*>(found->ai_addr);
  const std::uint32_t number = ntohl(address->sin_addr.s_addr);
  freeaddrinfo(found);
  return number;
}

}  // namespace

struct TcpConnection::Lookup {
  std::optional<std::uint32_t> address;  // the thread's until it is done
  std::atomic<bool> done = false;
};

TcpConnection::TcpConnection() = default;

TcpConnection::~TcpConnection() { close(); }

void TcpConnection::connectTo(const std::string& host, const std::string& port) {
  close();
  error_ = {};
  const auto number = portOf(port);
  if (!number) return fail(EINVAL);
  port_ = *number;
  state_ = State::Connecting;
  if (const auto address = ipv4Of(host)) return connectToAddress(*address);
  if (isDigitsAndDots(host)) return fail(EINVAL);
  lookup_ = std::make_shared<Lookup>();
  try {
    startInBackground([lookup = lookup_, host] {
      lookup->address = firstAddress(host);
      lookup->done = true;
    });
  } catch (const std::system_error& error) {
    fail(error.code().value());
  }
}

void TcpConnection::finishLookup() {
  if (!lookup_->done) return;
  const std::optional<std::uint32_t> address = std::exchange(lookup_, nullptr)->address;
  address ? connectToAddress(*address) : fail(EHOSTUNREACH);
}

void TcpConnection::connectToAddress(std::uint32_t host) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port_);
  address.sin_addr.s_addr = htonl(host);
  socket_ = Descriptor(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  setsockopt(socket_.get(), SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
  if (connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
      errno != EINPROGRESS)
    fail(errno);
}

State TcpConnection::look() {
  if (lookup_ != nullptr) finishLookup();
  if (state_ == State::Connecting && socket_) finishConnecting();
  if (state_ == State::Connected || state_ == State::Closing) flush();
  if (state_ == State::Connected) read();
  return state_;
}

void TcpConnection::finishConnecting() {
  pollfd wanted{socket_.get(), POLLOUT, 0};
  if (poll(&wanted, 1, 0) <= 0) return;
  const int failed = pendingError();
  failed == 0 ? void(state_ = State::Connected) : fail(failed);
}

bool TcpConnection::send(std::string_view bytes) {
  if (state_ != State::Connected) {
    // What ended the connection is the reason, where it is known.
    if (error_.number == 0) error_ = {ENOTCONN, std::strerror(ENOTCONN)};
    close();
    return false;
  }
  pending_.append(bytes);
  flush();
  return state_ == State::Connected;
}

void TcpConnection::finishSending() { shutdown(socket_.get(), SHUT_WR); }

void TcpConnection::close() {
  lookup_ = nullptr;
  // What was not taken yet is given up, too: the other side sees a reset, not an end.
  constexpr linger atOnce{1, 0};
  if (unacknowledged() > 0) setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  socket_.closeNow();
  pending_.clear();
  state_ = State::Closed;
}

std::int64_t TcpConnection::unsent() {
  if (socket_) {
    if (const int failed = pendingError(); failed != 0) fail(failed);
  }
  const int waiting = unacknowledged();
  return waiting < 0 ? -1 : static_cast<std::int64_t>(pending_.size()) + waiting;
}

/// One piece a look: a sender that does not stop cannot hold it up.
void TcpConnection::read() {
  std::array<char, 4096> buffer;
  const ssize_t count = recv(socket_.get(), buffer.data(), buffer.size(), 0);
  if (count > 0) {
    received_.append(buffer.data(), static_cast<std::size_t>(count));
  } else if (count == 0) {
    state_ = State::Closing;
    error_ = {EPIPE, std::strerror(EPIPE)};
  } else if (errno != EAGAIN && errno != EINTR) {
    fail(errno);
  }
}

void TcpConnection::flush() {
  while (!pending_.empty()) {
    const ssize_t count = ::send(socket_.get(), pending_.data(), pending_.size(), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) return;
    if (count < 0) return fail(errno);
    pending_.erase(0, static_cast<std::size_t>(count));
  }
}

void TcpConnection::fail(int number) {
  close();
  error_ = {number, std::strerror(number)};
}

/// Bytes that the system holds, the end among them once it was told; -1 without a connection.
int TcpConnection::unacknowledged() const {
  int waiting = 0;
  return ioctl(socket_.get(), SIOCOUTQ, &waiting) == 0 ? waiting : -1;
}

/// The error that the system keeps for the socket; asking takes it.
int TcpConnection::pendingError() const {
  int number = 0;
  socklen_t size = sizeof number;
  if (getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &number, &size) != 0) return errno;
  return number;
}

}  // namespace platform
