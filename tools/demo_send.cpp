// Sends one archive to a terminal on this machine, without a person: demo_send ARCHIVE PORT.
// Prints the log; ends with 0 only when the file was sent.

#include <cstdio>
#include <thread>

#include "download/SendJob.h"
#include "platform/Signals.h"
#include "platform/TcpConnection.h"
#include "platform/TypedPath.h"
#include "shell/BatchUser.h"
#include "shell/Program.h"

namespace {

constexpr int signalled = 128;  // plus the signal's number

class Silent : public download::SendDisplay {
 public:
  void showStatus(const char*) override {}
  void showPercent(int) override {}
  void showTimeLeft(bool) override {}
  void setTimeLeft(std::uint64_t) override {}
  void wait(std::chrono::nanoseconds nap) override { std::this_thread::sleep_for(nap); }
};

}  // namespace

int main(int count, char** words) {
  if (count != 3) {
    std::fputs("demo_send ARCHIVE PORT\n", stderr);
    return 2;
  }
  platform::catchEndSignals();
  shell::Host host;
  shell::BatchUser user(false);
  shell::Program program(host.system(), host.programFolder, user);
  program.log.setOnEntry([](const std::string& line) { std::printf("log %s\n", line.c_str()); });
  const download::SendOrder order{platform::typedPath(host.drives, words[1], host.callerFolder).path,
                                  {"127", "0", "0", "1"},
                                  words[2],
                                  download::archiveMode,
                                  "usr1"};
  platform::TcpConnection connection;
  Silent display;
  const platform::Busy::Scope busy(host.busy);
  const auto end = download::SendJob(program.services(), order, connection, display).run().end;
  if (end == runtime::JobEnd::Done) return 0;
  return platform::endSignal() == 0 ? 1 : signalled + platform::endSignal();
}
