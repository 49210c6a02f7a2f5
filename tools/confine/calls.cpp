#include "tools/confine/calls.h"

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace confine {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t architecture = 0;
#endif

constexpr std::uint32_t foreignCalls = 0x40000000;  // the numbers of x32, the other set of the same processor
constexpr std::uint32_t refusal = SECCOMP_RET_ERRNO | EACCES;
constexpr std::uint32_t unknown = SECCOMP_RET_ERRNO | ENOSYS;

constexpr sock_filter load(std::size_t place) {
  return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(place));
}
constexpr sock_filter answer(std::uint32_t what) { return BPF_STMT(BPF_RET | BPF_K, what); }
constexpr sock_filter jump(int test, std::uint32_t value, std::uint8_t whenTrue, std::uint8_t whenFalse) {
  return BPF_JUMP(static_cast<std::uint16_t>(BPF_JMP | BPF_K | test), value, whenTrue, whenFalse);
}
/// The next statement is for this value alone.
constexpr sock_filter ifEqual(std::uint32_t value) { return jump(BPF_JEQ, value, 0, 1); }

// An ioctl is told by the lower half of its number, as the system does. A ring of requests would make sockets
// without a call; whoever uses one also has a way without.
constexpr sock_filter filter[] = {
    load(offsetof(seccomp_data, arch)),
    jump(BPF_JEQ, architecture, 1, 0),
    answer(unknown),
    load(offsetof(seccomp_data, nr)),
    jump(BPF_JGE, foreignCalls, 0, 1),
    answer(unknown),
    ifEqual(SYS_io_uring_setup),
    answer(unknown),
    ifEqual(SYS_socket),
    answer(refusal),
    ifEqual(SYS_socketpair),
    answer(refusal),
    ifEqual(SYS_open_by_handle_at),
    answer(refusal),
    jump(BPF_JEQ, SYS_ioctl, 0, 5),
    load(offsetof(seccomp_data, args[1])),
    ifEqual(TIOCSTI),
    answer(refusal),
    ifEqual(TIOCLINUX),
    answer(refusal),
    answer(SECCOMP_RET_ALLOW),
};

}  // namespace

bool refuseCalls() {
  if (architecture == 0) {
    errno = ENOTSUP;
    return false;
  }
  const sock_fprog program{static_cast<unsigned short>(std::size(filter)), const_cast<sock_filter*>(filter)};
  // Without the flag systems before 5.16 slow down every program that has a filter.
  return syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_SPEC_ALLOW, &program) == 0;
}

}  // namespace confine
