// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Signals belong to the application's threads.
#pragma once

#ifndef _WIN32
#include <pthread.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): POSIX has more than <csignal>
#endif

namespace orvane {

/// For a thread of the library's: it receives no signal from now on. What a thread brings on itself
/// stays, for the sake of crash handlers and profilers.
inline void blockSignals() {
#ifndef _WIN32
  sigset_t signals;
  sigfillset(&signals);
  for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGPROF}) {
    sigdelset(&signals, own);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
#endif
}

}  // namespace orvane
