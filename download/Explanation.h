#pragma once

#include <string>
#include <string_view>

#include "download/Protocol.h"
#include "platform/Connection.h"

namespace download {

/// What a transfer tried, and how far it came.
struct Attempt {
  std::string address;
  std::string port;
  Request request;          ///< its size is that of the file, in bytes
  std::uint64_t taken = 0;  ///< bytes of the file that the unit has acknowledged, as far as is known
};

/// Why a transfer failed, in plain words for whoever sits in front of it: what was tried, how far it came,
/// and what to look at. Inner texts.

/// `error`: number 0 when nothing came back in time.
std::string explainNoConnection(const Attempt& attempt, const platform::ConnectionError& error);

enum class NoReply { Silence, HungUp, OtherWords };
/// `words`: what the unit said instead, as it came.
std::string explainNoReply(const Attempt& attempt, NoReply how, std::string_view words);

/// Of a unit that answered NoSpace or BadArgs.
std::string explainRefusal(const Attempt& attempt, Reply reply);

/// Of a connection that was there; `error`: number 0 when the unit took nothing for too long.
std::string explainLoss(const Attempt& attempt, const platform::ConnectionError& error);

/// Of a file that could not be opened for reading; `path` in Windows form, `systemError` an errno, EINVAL of
/// what is no file of bytes.
std::string explainUnopened(const Attempt& attempt, const std::string& path, int systemError);

/// Of a file that could not be read to its end as it was; `path` in Windows form.
std::string explainFile(const Attempt& attempt, const std::string& path);

}  // namespace download
