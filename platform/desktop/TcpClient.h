#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"

class QHostAddress;
class QSocketNotifier;

namespace platform::desktop {

enum class TcpState {
  Closed = 0,
  Connecting = 6,  ///< the name is being looked up, too
  Connected = 7,
  Closing = 8  ///< the other side has closed; what was handed over may still be on its way
};

/// Why a connection failed or refused data: the system's errno and its description. 0: nothing failed.
struct TcpError {
  int number = 0;
  std::string description;
};

/// One TCP connection over IPv4.
class TcpClient : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Gives up an earlier connection. A port text that is no port fails at once, and so does a host of digits
  /// and dots that is no address.
  virtual void connectTo(const QString& host, const QString& port) = 0;
  /// False when the connection cannot take the bytes: then it is closed, and error() says why.
  virtual bool send(std::string_view bytes) = 0;
  virtual std::string receive() = 0;  ///< what has arrived since the last call
  virtual void close() = 0;           ///< bytes that the other side has not acknowledged are given up
  virtual TcpState state() const = 0;
  /// Bytes that the other side has not acknowledged yet; -1 when the connection is closed or has failed.
  virtual std::int64_t unsent() = 0;
  virtual TcpError error() const = 0;

 signals:
  void dataArrival();
  void sendComplete();  ///< all bytes were handed to the system
  void closed();        ///< by the other side, or by a failure after it was connected
};

/// The system's own sockets, without a proxy: only they tell a reset from a close.
class DesktopTcpClient : public TcpClient {
  Q_OBJECT

 public:
  explicit DesktopTcpClient(QObject* parent = nullptr);
  ~DesktopTcpClient() override;

  void connectTo(const QString& host, const QString& port) override;
  bool send(std::string_view bytes) override;
  std::string receive() override { return std::exchange(received_, {}); }
  void close() override;
  TcpState state() const override { return state_; }
  std::int64_t unsent() override;
  TcpError error() const override { return error_; }

 private:
  void connectToAddress(const QHostAddress& address, std::uint16_t port);
  void lookUp(const QString& host, std::uint16_t port);
  void readable();
  void writable();
  void finishConnecting();
  bool flush();
  void fail(int number);
  int pendingError() const;
  int unacknowledged() const;

  TcpState state_ = TcpState::Closed;
  TcpError error_;
  Descriptor socket_;
  std::unique_ptr<QSocketNotifier> readNotifier_;
  std::unique_ptr<QSocketNotifier> writeNotifier_;
  std::string pending_;  // not yet taken by the system
  std::string received_;
  int lookup_ = -1;
};

}  // namespace platform::desktop
