#include "tools/confine/privileges.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

namespace confine {
namespace {

constexpr std::uint32_t kept = 1U << CAP_CHOWN | 1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH |
                               1U << CAP_FOWNER | 1U << CAP_FSETID | 1U << CAP_MKNOD | 1U << CAP_SETFCAP;

}  // namespace

bool dropPrivileges() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3]{};
  if (syscall(SYS_capget, &header, sets) != 0) return false;
  const std::uint32_t rest = sets[0].permitted & kept;
  const std::uint32_t inherited = sets[0].inheritable & kept;
  sets[0] = {rest, rest, inherited};
  sets[1] = {};
  return syscall(SYS_capset, &header, sets) == 0 && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
}

}  // namespace confine
