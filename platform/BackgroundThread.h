#pragma once

#include <pthread.h>

#include <csignal>
#include <thread>
#include <utility>

namespace platform {

/// Starts a thread that has no say in the end signals, which belong to the main thread. Throws
/// std::system_error when the system has no thread to give.
template <typename Work>
[[nodiscard]] std::thread threadWithoutSignals(Work work) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread thread(std::move(work));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
  } catch (...) {
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    throw;
  }
}

/// The same for a thread that nobody waits for: a look at a dead disk or name server may take minutes. It
/// owns or shares what it uses.
template <typename Work>
void startInBackground(Work work) {
  threadWithoutSignals(std::move(work)).detach();
}

}  // namespace platform
