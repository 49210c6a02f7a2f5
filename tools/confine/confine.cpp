// confine [WORD]... -- PROGRAM ARGV0 [ARGUMENT]...: executes a program that can change nothing but what it
// was given. The words stand in platform/ConfinementWords.h, what each layer is good for in docs/security.md.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "platform/ConfinementWords.h"
#include "tools/confine/calls.h"
#include "tools/confine/folders.h"
#include "tools/confine/landlock.h"
#include "tools/confine/mounts.h"
#include "tools/confine/namespaces.h"
#include "tools/confine/privileges.h"
#include "tools/confine/supervise.h"
#include "tools/confine/words.h"

namespace {

using confine::Words;
using platform::Descriptor;

/// Afterwards this process is the tool's, or there will be none.
bool enterLayers(const Words& words, Descriptor& report) {
  const auto folders = confine::resolvedFolders(words.folders);
  if (!folders) return false;
  // Where everything may be changed there is nothing to close.
  const bool mounts = words.mounts && (folders->empty() || folders->front() != "/");
  if (!confine::enterNamespaces(mounts, words.processes)) return false;
  if (mounts && !confine::closeMounts(*folders)) return false;
  if (words.processes && (!confine::endWith(words.parent) || !confine::becomeSupervised(report)))
    return false;
  // Only now: with less, and under these rules, nothing can be mounted.
  if (!confine::dropPrivileges()) return false;
  if (words.landlock && !confine::restrictFiles(*folders)) return false;
  if (words.calls && !confine::refuseCalls()) return false;
  return words.processes ||
         confine::endWith(words.parent);  // last: what stands above would make it forgotten
}

int report(const Descriptor& to, int status) {
  const int error = errno;
  if (!to || write(to.get(), &error, sizeof error) != sizeof error)
    std::fprintf(stderr, "confine: %s\n", std::strerror(error));
  return status;
}

}  // namespace

int main(int count, char** texts) {
  if (count == 2 && std::string_view(texts[1]) == platform::probeWord) return 0;
  const auto words = confine::readWords(count, texts);
  if (!words) {
    std::fprintf(stderr, "usage: confine --parent=PID [WORD]... -- PROGRAM ARGV0 [ARGUMENT]...\n");
    return platform::notConfinedStatus;
  }
  Descriptor reporting(words->report ? platform::reportDescriptor : -1);
  if (reporting) fcntl(reporting.get(), F_SETFD, FD_CLOEXEC);
  if (!enterLayers(*words, reporting)) return report(reporting, platform::notConfinedStatus);
  execve(words->program, words->arguments, environ);
  return report(reporting, platform::notExecutedStatus);
}
