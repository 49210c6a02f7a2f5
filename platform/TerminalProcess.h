#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/ChildProcess.h"
#include "platform/Descriptor.h"

namespace platform {

/// How a program ended: by a signal, or (signal 0) by itself with a status.
struct ProgramEnd {
  int status = 0;
  int signal = 0;
};

/// A running program on a pseudo terminal of its own (80 columns, 25 lines), which it controls: it writes as
/// to a terminal, and what is typed reaches it, Ctrl+C as a signal. It and what it starts are one session,
/// which goes with this object.
class TerminalProcess {
 public:
  /// nullopt: not started, and `systemError` is the errno that says why.
  static std::optional<TerminalProcess> start(const ChildSettings& settings, int& systemError);
  TerminalProcess(TerminalProcess&& other) noexcept;
  TerminalProcess& operator=(TerminalProcess&&) = delete;
  ~TerminalProcess();

  int outputDescriptor() const { return terminal_.get(); }  ///< readable: there is output
  int endDescriptor() const { return process_.get(); }      ///< readable: the program has ended

  /// What can be read at once, at most `size` bytes; 0 when there is nothing.
  std::size_t read(char* buffer, std::size_t size);
  /// As from a keyboard: what a program that does not read has no room for is lost.
  void type(std::string_view bytes);

  void signalSession(int number) const;  ///< all of the session that still runs
  bool sessionRuns() const;              ///< the program or anything that it started
  ProgramEnd end() const;                ///< waits for the end of the program

 private:
  TerminalProcess(pid_t pid, Descriptor terminal, Descriptor programsEnd);
  pid_t session_;  // the program is its leader
  Descriptor terminal_;
  Descriptor programsEnd_;  // kept open, so that output ends only with the program
  Descriptor process_;
};

}  // namespace platform
