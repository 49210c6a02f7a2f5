// A terminal to send files to: takes requests as the real one does, and goes wrong on demand.

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/Signals.h"
#include "tools/kt500sim_clients.h"
#include "tools/kt500sim_event.h"
#include "tools/kt500sim_wait.h"

namespace {

using kt500sim::Options;
using platform::Descriptor;

constexpr int waitingClients = 8;
constexpr std::chrono::milliseconds fullPause(50);
constexpr int signalled = 128;     // plus the signal's number
constexpr int smallBuffer = 4096;  // bytes; a terminal that reads slowly takes no more than that ahead

std::string nameOf(const sockaddr_in& address) {
  char text[INET_ADDRSTRLEN] = "";
  inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  return std::string(text) + ":" + std::to_string(ntohs(address.sin_port));
}

int fail(const std::string& what) {
  std::fprintf(stderr, "kt500sim: %s: %s\n", what.c_str(), std::strerror(errno));
  return 1;
}

/// A listening socket, or none with errno saying why.
Descriptor listenOn(const Options& options) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(options.port);
  errno = EINVAL;
  if (inet_pton(AF_INET, options.listenAddress.c_str(), &address.sin_addr) != 1) return Descriptor();
  Descriptor server(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  const int on = 1;
  setsockopt(server.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (options.readRate) setsockopt(server.get(), SOL_SOCKET, SO_RCVBUF, &smallBuffer, sizeof smallBuffer);
  const bool listens = bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                       listen(server.get(), waitingClients) == 0;
  return listens ? std::move(server) : Descriptor();
}

/// False when the system has no more to give; a client that has gone again is none.
bool acceptNext(int server, kt500sim::Clients& clients, std::uint64_t& served) {
  sockaddr_in from{};
  socklen_t size = sizeof from;
  Descriptor client(accept4(server, reinterpret_cast<sockaddr*>(&from), &size, SOCK_CLOEXEC));
  if (!client) return errno == EINTR || errno == EAGAIN || errno == ECONNABORTED;
  kt500sim::event("connected " + nameOf(from));
  clients.serve(std::move(client), nameOf(from));
  ++served;
  return true;
}

/// False when no more clients can be accepted; errno says why.
bool serveAll(int server, const Options& options, const kt500sim::Store& store) {
  kt500sim::Clients clients(options, store);
  std::uint64_t served = 0;
  while ((!options.count || served < *options.count) && !kt500sim::isToEnd()) {
    if (clients.isFull())
      kt500sim::waitFor(-1, 0, std::chrono::steady_clock::now() + fullPause);
    else if (kt500sim::waitFor(server, POLLIN, kt500sim::Moment::max()) &&
             !acceptNext(server, clients, served))
      return false;
  }
  return true;
}

int run(const Options& options) {
  const kt500sim::Store store(options.root);
  if (!store) return fail(options.root);
  const Descriptor server = listenOn(options);
  if (!server) return fail(options.listenAddress + ":" + std::to_string(options.port));
  sockaddr_in own{};
  socklen_t size = sizeof own;
  getsockname(server.get(), reinterpret_cast<sockaddr*>(&own), &size);
  kt500sim::event("listening " + nameOf(own));
  if (!serveAll(server.get(), options, store)) return fail("accept");
  return kt500sim::isToEnd() ? signalled + platform::endSignal() : 0;
}

}  // namespace

int main(int count, char** words) {
  const auto [options, help, error] = kt500sim::readOptions({words + 1, words + count});
  if (help) std::fputs(kt500sim::helpText, stdout);
  if (help) return 0;
  if (!error.empty()) {
    std::fprintf(stderr, "kt500sim: %s (--help says what there is)\n", error.c_str());
    return 2;
  }
  platform::catchEndSignals();
  // Of the unpacker, whose words are read; while there is one thread.
  setenv("LC_ALL", "C", 1);
  unsetenv("TAR_OPTIONS");
  return run(options);
}
