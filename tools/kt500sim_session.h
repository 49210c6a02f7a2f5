#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "platform/Descriptor.h"
#include "tools/kt500sim_event.h"
#include "tools/kt500sim_options.h"
#include "tools/kt500sim_request.h"
#include "tools/kt500sim_store.h"
#include "tools/kt500sim_wait.h"

namespace kt500sim {

/// One connection, from the request to the stored file. Prints what happens.
class Session {
 public:
  /// `served`: see Events.
  Session(platform::Descriptor client, const Options& options, const Store& store, const std::string& name,
          std::atomic<int>& served)
      : client_(std::move(client)),
        options_(options),
        store_(store),
        accounts_(store.folder() + "/etc"),
        event_(name, served) {}
  void serve();

 private:
  std::optional<Request> receiveRequest();
  bool reply(const std::string& text);
  void receiveFile(const Request& request);
  bool receiveData(std::uint64_t size, IncomingFile& file);
  void store(const Request& request, IncomingFile& file);
  void lose(const std::string& why);
  std::uint64_t bytesFree() const { return options_.free.value_or(store_.bytesLeft()); }

  Moment soonest(std::chrono::milliseconds wait) const;  ///< its end, or that of all time for this client
  bool waitForClient(short what, Moment until) { return waitFor(client_.get(), what, until); }
  void pause(std::chrono::milliseconds wait) { waitFor(-1, 0, soonest(wait)); }
  std::string receiveSome(std::size_t most, Moment until);  ///< empty: the end, an error, or too late
  std::size_t allowedNow(Moment start, std::uint64_t received) const;

  platform::Descriptor client_;
  const Options& options_;
  const Store& store_;
  TerminalAccounts accounts_;
  Events event_;
  Moment last_ = std::chrono::steady_clock::now() + options_.limit;
};

}  // namespace kt500sim
