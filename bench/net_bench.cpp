// What sending a file through the dialog costs, over loopback: its pace as a ratio to a bare socket loop that
// writes 1000 bytes and waits 1 ms between them, processor time, and memory. Ends with 1 when a bound is
// missed. Usage: QT_QPA_PLATFORM=offscreen net_bench BUILD-FOLDER (whose tools are used)

#include <arpa/inet.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <array>
#include <future>
#include <string>
#include <thread>

#include "bench/Measure.h"
#include "download/ui/frmNetloader.h"
#include "shell/BatchTools.h"
#include "shell/BatchUser.h"
#include "shell/Program.h"

namespace {

constexpr std::size_t chunk = 1000;  // bytes
constexpr auto wait = std::chrono::milliseconds(1);
constexpr std::size_t small = 5'000'000;
constexpr std::size_t large = 100'000'000;
constexpr int rounds = 5;

class Loopback : public shell::BatchUser {
 public:
  Loopback() : BatchUser(true) {}
  runtime::Answer message(const std::string& text, runtime::Buttons, runtime::Icon, const std::string& title,
                          runtime::Consequence) override {
    if (title == "Send Complete") return runtime::Answer::Ok;
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    std::exit(2);
  }
};

/// A terminal that says OK to anything, takes what comes, and times it.
class Terminal {
 public:
  Terminal() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 1) != 0)
      std::exit(2);
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
  }
  ~Terminal() { close(listener_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  int port() const { return port_; }

  /// Seconds from the first byte of the file to the last.
  double receive(std::size_t announced) const {
    const int connection = accept(listener_, nullptr, nullptr);
    std::array<char, 1 << 16> buffer;
    if (read(connection, buffer.data(), buffer.size()) <= 0 || write(connection, "OK", 2) != 2) std::exit(2);
    std::size_t got = 0;
    const auto take = [&] {
      const ssize_t count = read(connection, buffer.data(), buffer.size());
      if (count <= 0) std::exit(2);
      got += static_cast<std::size_t>(count);
    };
    take();
    const double time = bench::seconds([&] {
      while (got < announced) take();
    });
    close(connection);
    return time;
  }

 private:
  int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int port_ = 0;
};

void sendBare(int port, std::size_t size) {
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  std::array<char, chunk> bytes{};
  if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      write(connection, "request", 7) != 7 || read(connection, bytes.data(), 2) != 2)
    std::exit(2);
  for (std::size_t sent = 0; sent < size; sent += chunk) {
    if (write(connection, bytes.data(), chunk) != static_cast<ssize_t>(chunk)) std::exit(2);
    std::this_thread::sleep_for(wait);
  }
  close(connection);
}

class NetBench {
 public:
  explicit NetBench(const std::string& build)
      : program_(host_.system(), host_.drives.toWindows(build) + "\\", user_) {
    shell::prepareTools(program_);
  }

  bool pace() {
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < rounds; ++i) {
      auto time = std::async(std::launch::async, [this] { return terminal_.receive(small); });
      sendBare(terminal_.port(), small);
      bare.push_back(time.get());
      ours.push_back(send(small));
    }
    std::printf("  (medians: %.2f s, bare %.2f s)\n", bench::median(ours), bench::median(bare));
    return bench::report("5 MB / a bare socket loop", bench::median(ours) / bench::median(bare), 1.05);
  }

  bool processorAndMemory() {
    const double before = processorSeconds();
    const double smallPeak = peakOf(small);
    const double largePeak = peakOf(large);
    const bool kept = bench::report("100 MB / 5 MB, peak memory", largePeak / smallPeak, 1.02);
    return bench::report("share of a processor", (processorSeconds() - before) / sending_, 0.1) && kept;
  }

 private:
  static double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    const auto seconds = [](const timeval& time) {
      return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
  }

  double peakOf(std::size_t size) {
    bench::forgetPeak();
    sending_ += send(size);
    return static_cast<double>(bench::memory("VmHWM"));
  }

  double send(std::size_t size) {
    const std::string file = work_ / "file";
    std::ofstream(file).close();
    std::filesystem::resize_file(file, size);
    auto time = std::async(std::launch::async, [this, size] { return terminal_.receive(size); });
    download::frmNetloader form(program_.services(), host_.drives.toWindows(file));
    QTimer::singleShot(0, &form, [&] {
      const char* const loopback[] = {"127", "0", "0", "1"};
      for (int i = 0; i < 4; ++i)
        form.findChild<QLineEdit*>(QStringLiteral("txtIP_%1").arg(i))
            ->setText(QString::fromLatin1(loopback[i]));
      form.findChild<QLineEdit*>(QStringLiteral("txtPort"))->setText(QString::number(terminal_.port()));
      form.findChild<QPushButton*>(QStringLiteral("cmdSend"))->click();
    });
    form.exec();
    return time.get();
  }

  bench::Folder work_;
  Terminal terminal_;
  shell::Host host_;
  Loopback user_;
  shell::Program program_;
  double sending_ = 0;  ///< seconds
};

}  // namespace

int main(int count, char** words) {
  if (count != 2) return 2;
  const bench::Folder settings;
  setenv("XDG_CONFIG_HOME", settings.path().c_str(), 1);
  int one = 1;
  QApplication application(one, words);
  NetBench net(std::filesystem::absolute(words[1]).lexically_normal().string());
  const bool pace = net.pace();
  return net.processorAndMemory() && pace ? 0 : 1;
}
