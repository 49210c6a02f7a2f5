#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"

namespace platform {

/// What a child is made of, all in host form.
struct ChildSettings {
  std::string program;
  std::vector<std::string> arguments;  ///< argv[0] first
  std::vector<std::string> environment;
  std::string workingFolder;  ///< empty: this process's own
  bool reports = false;       ///< it is a launcher, which says at reportDescriptor whether its tool runs
};

/// A running host program in a process group of its own, which gets the end signals (platform/Signals.h) as
/// long as this object lives. stdin is /dev/null, stdout and stderr lead into one pipe; no other descriptor
/// is passed on; signal mask and dispositions are the default ones.
class ChildProcess {
 public:
  enum class Failure { None, Pipe, Start };
  /// Of a launcher: the start of its tool, which is waited for.
  static std::optional<ChildProcess> start(const ChildSettings& settings, Failure& failure, int& systemError);
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&&) = delete;
  ~ChildProcess();

  bool hasOutput() const { return static_cast<bool>(output_); }  ///< false behind the end of output
  bool hasEnded() const;

  /// Waits for output or its end, for at most so many milliseconds.
  void waitForOutput(int milliseconds) const;
  void waitForOutputOrEnd(int milliseconds) const;  ///< also for the end of the program itself
  void waitForEnd(int milliseconds) const;

  /// What can be read at once, at most `size` bytes; 0 when there is nothing or the output has ended.
  std::size_t read(char* buffer, std::size_t size);
  std::size_t bytesWaiting() const;  ///< in the pipe

  /// Ends the group: SIGTERM, and SIGKILL for what is left after half a second. What was still written.
  std::string end();
  void receiveSignals() const;  ///< the end signals, in place of another one that lives
  int status();  ///< waits for the end of the program: its status, 128 + n for death by signal n

 private:
  ChildProcess(pid_t pid, Descriptor output);
  pid_t pid_;
  Descriptor output_;
  Descriptor process_;  // becomes readable when the program ends
};

}  // namespace platform
