// A terminal to send files to: takes requests as the real one does, and goes wrong on demand.

#include <arpa/inet.h>
#include <sys/socket.h>

#include <csignal>
#include <cstdio>
#include <cstring>

#include "tools/kt500sim_event.h"
#include "tools/kt500sim_session.h"

namespace {

using kt500sim::Options;
using platform::Descriptor;

constexpr int waitingClients = 8;
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
  Descriptor server(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int on = 1;
  setsockopt(server.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (options.readRate) setsockopt(server.get(), SOL_SOCKET, SO_RCVBUF, &smallBuffer, sizeof smallBuffer);
  const bool listens = bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                       listen(server.get(), waitingClients) == 0;
  return listens ? std::move(server) : Descriptor();
}

Descriptor acceptNext(int server) {
  while (true) {
    sockaddr_in from{};
    socklen_t size = sizeof from;
    Descriptor client(accept4(server, reinterpret_cast<sockaddr*>(&from), &size, SOCK_CLOEXEC));
    if (client) {
      kt500sim::event("connected " + nameOf(from));
      return client;
    }
    if (errno != EINTR && errno != ECONNABORTED) return client;
  }
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
  for (std::uint64_t served = 0; !options.count || served < *options.count; ++served) {
    Descriptor client = acceptNext(server.get());
    if (!client) return fail("accept");
    kt500sim::Session(std::move(client), options, store).serve();
  }
  return 0;
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
  std::signal(SIGPIPE, SIG_IGN);
  return run(options);
}
