#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/Descriptor.h"
#include "tools/kt500sim_options.h"
#include "tools/kt500sim_request.h"
#include "tools/kt500sim_store.h"

namespace kt500sim {

/// One connection, from the request to the stored file. Prints what happens.
class Session {
 public:
  Session(platform::Descriptor client, const Options& options, const Store& store)
      : client_(std::move(client)), options_(options), store_(store), accounts_(store.folder() + "/etc") {}
  void serve();

 private:
  using Moment = std::chrono::steady_clock::time_point;

  std::optional<Request> receiveRequest();
  bool reply(const std::string& text);
  void receiveFile(const Request& request);
  bool receiveData(std::uint64_t size, IncomingFile& file);
  void store(const Request& request, IncomingFile& file);
  void lose(const std::string& why);
  std::uint64_t bytesFree() const { return options_.free.value_or(store_.bytesLeft()); }

  bool waitFor(short what, Moment until);
  std::string receiveSome(std::size_t most, Moment until);  ///< empty: the end, an error, or too late
  std::size_t allowedNow(Moment start, std::uint64_t received) const;

  platform::Descriptor client_;
  const Options& options_;
  const Store& store_;
  TerminalAccounts accounts_;
};

}  // namespace kt500sim
