#include "tools/kt500sim_session.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "tools/kt500sim_installer.h"

namespace kt500sim {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t blockSize = 16 * 1024;
constexpr milliseconds betweenPieces(20);  // of a reply that comes byte by byte
constexpr milliseconds rateStep(50);

std::string count(std::uint64_t bytes) { return std::to_string(bytes) + " bytes"; }

}  // namespace

void Session::serve() {
  const std::optional<Request> request = receiveRequest();
  if (request && options_.silent) {
    event_("silent");
    waitForClient(POLLRDHUP, soonest(options_.timeout));
  } else if (request) {
    const bool fits = request->size <= bytesFree();
    const std::string text = options_.reply.value_or(fits ? "OK" : "NOSPACE");
    if (reply(text) && text.starts_with("OK")) receiveFile(*request);
  }
  if (steady_clock::now() >= last_) event_("out of time");
  event_("closed");
}

std::optional<Request> Session::receiveRequest() {
  const Moment until = soonest(options_.timeout);
  std::string bytes;
  while (true) {
    const std::string more = receiveSome(longestRequest, until);
    if (more.empty()) {
      event_("no request");
      return std::nullopt;
    }
    const ReadRequest read = readRequest(bytes += more, accounts_);
    if (read.state == RequestState::Bad) {
      event_("refused: " + read.reason);
      reply("BADARGS");
      return std::nullopt;
    }
    if (read.state == RequestState::Incomplete) continue;
    const Request& request = read.request;
    const std::string mode = std::to_string(request.mode >> 6) + std::to_string(request.mode >> 3 & 7) +
                             std::to_string(request.mode & 7);
    event_("request " + shown(request.name) + " size " + std::to_string(request.size) + " mode " + mode +
           " owner " + request.owner + " group " + request.group);
    return request;
  }
}

bool Session::reply(const std::string& text) {
  pause(options_.delay);
  const std::size_t piece = options_.splitReply ? 1 : std::max<std::size_t>(text.size(), 1);
  for (std::size_t at = 0; at < text.size(); at += piece) {
    if (at > 0) pause(betweenPieces);
    const std::string part = text.substr(at, piece);
    if (send(client_.get(), part.data(), part.size(), MSG_NOSIGNAL | MSG_DONTWAIT) !=
        static_cast<ssize_t>(part.size())) {
      event_("reply not delivered");
      return false;
    }
  }
  event_("reply " + shown(text));
  return true;
}

void Session::receiveFile(const Request& request) {
  IncomingFile file(store_);
  if (!file) return lose("cannot write below " + store_.folder());
  if (receiveData(request.size, file)) store(request, file);
}

/// Whoever sent the file must not take it for kept: the connection will be reset.
void Session::lose(const std::string& why) {
  event_(why);
  const linger atOnce{1, 0};
  setsockopt(client_.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

/// How much may be read at this moment without going beyond the wanted rate.
std::size_t Session::allowedNow(Moment start, std::uint64_t received) const {
  if (!options_.readRate) return blockSize;
  const std::chrono::duration<double> passed = steady_clock::now() - start;
  const double allowed =
      passed.count() * static_cast<double>(*options_.readRate) - static_cast<double>(received);
  return static_cast<std::size_t>(std::clamp(allowed, 0.0, static_cast<double>(blockSize)));
}

bool Session::receiveData(std::uint64_t size, IncomingFile& file) {
  const std::uint64_t last = std::min(size, options_.closeAfter.value_or(size));
  const Moment start = steady_clock::now();
  std::uint64_t received = 0;
  Moment until = soonest(options_.timeout);
  while (received < last && steady_clock::now() < until && !isToEnd()) {
    const std::size_t most = std::min<std::uint64_t>(last - received, allowedNow(start, received));
    if (most == 0) {
      // A sender that closes its side has more on its way.
      if (options_.readRate != 0U)
        pause(rateStep);
      else if (waitForClient(POLLRDHUP, std::min(until, soonest(rateStep))))
        break;
      continue;
    }
    const std::string bytes = receiveSome(most, until);
    if (bytes.empty()) break;
    if (!file.write(bytes)) {
      lose("cannot write");
      break;
    }
    received += bytes.size();
    until = soonest(options_.timeout);
  }
  event_((received == size ? "received " : "broken off after ") + count(received));
  return received == size && last == size;
}

void Session::store(const Request& request, IncomingFile& file) {
  const platform::Descriptor archive = file.reader();
  if (!file.keepAs(request.name, request.mode)) return lose("cannot store " + shown(request.name));
  event_("stored " + shown(request.name) + " owner " + accounts_.userNumber(request.owner).value_or("?") +
         "/" + accounts_.groupNumber(request.group).value_or("?"));
  if (options_.install && isInstallable(request.name))
    install(store_, {request.name, archive.get(), request.owner, bytesFree(), last_}, event_);
}

Moment Session::soonest(milliseconds wait) const { return std::min(last_, steady_clock::now() + wait); }

std::string Session::receiveSome(std::size_t most, Moment until) {
  std::array<char, blockSize> buffer;
  if (!waitForClient(POLLIN, until)) return "";
  const ssize_t got = recv(client_.get(), buffer.data(), std::min(most, buffer.size()), MSG_DONTWAIT);
  return got > 0 ? std::string(buffer.data(), static_cast<std::size_t>(got)) : "";
}

}  // namespace kt500sim
