// tamper FOLDER INSIDE PORT SOCKET PID: stands in for a tool that has been taken over. Tries what such a one
// would do to FOLDER, which holds "file", "old", "victim" and "null", and elsewhere; prints the name of all
// that it could do.

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

namespace {

bool opens(const std::string& path, int flags) {
  const int file = open(path.c_str(), flags, 0644);
  if (file >= 0) close(file);
  return file >= 0;
}

bool opensByHandle(const std::string& path, const std::string& throughFolder) {
  alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> room{};
  auto* const handle = reinterpret_cast<file_handle*>(room.data());
  handle->handle_bytes = MAX_HANDLE_SZ;
  int mount = 0;
  if (name_to_handle_at(AT_FDCWD, path.c_str(), handle, &mount, 0) != 0) return false;
  return open_by_handle_at(open(throughFolder.c_str(), O_RDONLY), handle, O_WRONLY) >= 0;
}

bool connectsTo(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return connect(socket(AF_INET, SOCK_STREAM, 0), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

bool connectsTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  return connect(socket(AF_UNIX, SOCK_STREAM, 0), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

/// Standard input is none, so that nothing can happen: the terminal's part of the system says so.
bool reachesTerminal(unsigned long request) {
  return ioctl(STDIN_FILENO, request, "x") == 0 || errno == ENOTTY;
}

}  // namespace

int main(int, char** words) {
  const std::string folder = words[1];
  const std::string file = folder + "/file";
  const std::string device = std::string(words[2]) + "/device";
  const auto path = [&](const char* name) { return folder + "/" + name; };
  const std::pair<const char*, std::function<bool()>> attacks[] = {
      {"create", [&] { return opens(path("new"), O_WRONLY | O_CREAT | O_EXCL); }},
      {"write", [&] { return opens(file, O_WRONLY); }},
      {"cut", [&] { return truncate(file.c_str(), 1) == 0; }},
      {"delete", [&] { return unlink(path("victim").c_str()) == 0; }},
      {"rename", [&] { return rename(path("old").c_str(), path("renamed").c_str()) == 0; }},
      {"link", [&] { return link(file.c_str(), path("linked").c_str()) == 0; }},
      {"folder", [&] { return mkdir(path("folder").c_str(), 0755) == 0; }},
      {"chmod", [&] { return chmod(file.c_str(), 0600) == 0; }},
      {"chown", [&] { return chown(file.c_str(), geteuid(), getegid()) == 0; }},
      {"touch", [&] { return utimensat(AT_FDCWD, file.c_str(), nullptr, 0) == 0; }},
      {"use", [&] { return opens(path("null"), O_WRONLY); }},
      {"make",  // the null device, by another name
       [&] { return mknod(device.c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0 && opens(device, O_WRONLY); }},
      {"handle", [&] { return opensByHandle(file, words[2]); }},
      {"tcp", [&] { return connectsTo(std::atoi(words[3])); }},
      {"local", [&] { return connectsTo(std::string(words[4])); }},
      {"pair",
       [ends = std::array<int, 2>()]() mutable {
         return socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0;
       }},
      {"ring", [] { return syscall(SYS_io_uring_setup, 1, nullptr) >= 0 || errno != ENOSYS; }},
      {"type", [] { return reachesTerminal(TIOCSTI); }},
      {"paste", [] { return reachesTerminal(TIOCLINUX); }},
      {"signal", [&] { return kill(std::atoi(words[5]), 0) == 0; }},
  };
  for (const auto& [name, succeeds] : attacks)
    if (succeeds()) std::printf("%s ", name);
  return opens("/dev/null", O_WRONLY | O_TRUNC) ? 0 : 1;
}
