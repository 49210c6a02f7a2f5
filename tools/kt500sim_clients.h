#pragma once

#include <atomic>
#include <list>
#include <string>
#include <thread>

#include "platform/Descriptor.h"
#include "tools/kt500sim_options.h"
#include "tools/kt500sim_store.h"

namespace kt500sim {

/// The clients that are served at once, in a thread each. Goes when all of them are done.
class Clients {
 public:
  Clients(const Options& options, const Store& store) : options_(options), store_(store) {}
  void serve(platform::Descriptor client, const std::string& name);
  bool isFull();

 private:
  struct Client {
    std::atomic<bool> done = false;
    std::jthread thread;
  };

  const Options& options_;
  const Store& store_;
  std::atomic<int> served_ = 0;
  std::list<Client> clients_;
};

}  // namespace kt500sim
