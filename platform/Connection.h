#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

enum class ConnectionState {
  Closed = 0,
  Connecting = 6,  ///< the name is being looked up, too
  Connected = 7,
  Closing = 8  ///< the other side has closed; what was handed over may still be on its way
};

/// Why a connection failed or refused data: the system's errno and its description. 0: nothing failed.
struct ConnectionError {
  int number = 0;
  std::string description;
};

/// One connection to a terminal. Nothing here waits: whoever does looks at it again and again.
class Connection {
 public:
  virtual ~Connection() = default;

  /// Gives up an earlier connection. A port text that is no port fails at once, and so does a host of digits
  /// and dots that is no address.
  virtual void connectTo(const std::string& host, const std::string& port) = 0;
  virtual ConnectionState look() = 0;         ///< does what can be done without waiting
  virtual ConnectionState state() const = 0;  ///< as it was at the last look
  /// False when the connection cannot take the bytes: then it is closed, and error() says why.
  virtual bool send(std::string_view bytes) = 0;
  virtual bool sendComplete() const = 0;  ///< all bytes were handed to the system
  /// Tells the other side that nothing follows; it can still be heard.
  virtual void finishSending() = 0;
  /// Bytes that the other side has not acknowledged yet; -1 when the connection is closed or has failed.
  virtual std::int64_t unsent() = 0;
  virtual std::string receive() = 0;  ///< what has arrived since the last call
  virtual void close() = 0;           ///< bytes that the other side has not acknowledged are given up
  virtual ConnectionError error() const = 0;
};

}  // namespace platform
