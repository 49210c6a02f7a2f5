#pragma once

#include <pthread.h>

#include <csignal>
#include <thread>
#include <utility>

namespace platform {

/// Starts a thread that nobody waits for: a look at a dead disk or name server may take minutes. It owns or
/// shares what it uses, and has no say in the end signals, which belong to the main thread. Throws
/// std::system_error when the system has no thread to give.
template <typename Work>
void startInBackground(Work work) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread(std::move(work)).detach();
  } catch (...) {
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    throw;
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace platform
