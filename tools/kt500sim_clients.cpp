#include "tools/kt500sim_clients.h"

#include <system_error>

#include "tools/kt500sim_session.h"

namespace kt500sim {
namespace {

constexpr std::size_t mostClients = 16;

}  // namespace

bool Clients::isFull() {
  clients_.remove_if([](const Client& client) { return client.done.load(); });
  return clients_.size() >= mostClients;
}

void Clients::serve(platform::Descriptor socket, const std::string& name) {
  Client& client = clients_.emplace_back();
  const auto work = [this, &client, name](platform::Descriptor mine) {
    Session(std::move(mine), options_, store_, name, served_).serve();
    client.done = true;
  };
  try {
    client.thread = std::jthread(work, std::move(socket));
  } catch (const std::system_error& error) {
    event(name + " cannot be served: " + error.what());
    clients_.pop_back();
  }
}

}  // namespace kt500sim
