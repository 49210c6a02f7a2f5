#pragma once

#include <memory>
#include <utility>

#include "platform/Connection.h"
#include "platform/Descriptor.h"

namespace platform {

/// TCP over IPv4 by the system's own sockets, without a proxy: only they tell a reset from a close.
class TcpConnection : public Connection {
 public:
  TcpConnection();
  TcpConnection(const TcpConnection&) = delete;
  TcpConnection& operator=(const TcpConnection&) = delete;
  ~TcpConnection() override;

  void connectTo(const std::string& host, const std::string& port) override;
  ConnectionState look() override;
  ConnectionState state() const override { return state_; }
  bool send(std::string_view bytes) override;
  bool sendComplete() const override { return state_ != ConnectionState::Closed && pending_.empty(); }
  void finishSending() override;
  std::int64_t unsent() override;
  std::string receive() override { return std::exchange(received_, {}); }
  void close() override;
  ConnectionError error() const override { return error_; }

 private:
  struct Lookup;

  void connectToAddress(std::uint32_t address);
  void finishLookup();
  void finishConnecting();
  void flush();
  void read();
  void fail(int number);
  int pendingError() const;
  int unacknowledged() const;

  ConnectionState state_ = ConnectionState::Closed;
  ConnectionError error_;
  std::uint16_t port_ = 0;
  std::shared_ptr<Lookup> lookup_;  // shared with its thread, which may outlast the connection
  Descriptor socket_;
  std::string pending_;  // not yet taken by the system
  std::string received_;
};

}  // namespace platform
