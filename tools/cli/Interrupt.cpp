// SPDX-License-Identifier: Apache-2.0
#include "Interrupt.h"

#include <utility>

namespace orvane::cli {
namespace {

// Tells the thread to end. Nobody else sends it: it is blocked, and directed at the thread.
constexpr int endSignal = SIGUSR2;

}  // namespace

Interrupt::Interrupt() {
  sigemptyset(&signals_);
  for (const int signal : {SIGINT, SIGTERM, endSignal}) sigaddset(&signals_, signal);
  pthread_sigmask(SIG_BLOCK, &signals_, &before_);
  thread_ = std::thread([this] { listen(); });
}

Interrupt::~Interrupt() {
  pthread_kill(thread_.native_handle(), endSignal);
  thread_.join();
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void Interrupt::watch(RequestHandle request) {
  RequestHandle cancelled;
  {
    const std::scoped_lock lock(mutex_);
    request_ = std::move(request);
    if (hasCome_) cancelled = request_;
  }
  if (cancelled) cancelled->cancel();
}

bool Interrupt::hasCome() const {
  const std::scoped_lock lock(mutex_);
  return hasCome_;
}

void Interrupt::listen() {
  for (;;) {
    int signal = 0;
    sigwait(&signals_, &signal);
    if (signal == endSignal) return;
    if (hasCome()) {
      // The default action, as if nobody had ever asked for the signal.
      std::signal(signal, SIG_DFL);
      pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
      std::raise(signal);
    }
    cancel();
  }
}

void Interrupt::cancel() {
  RequestHandle cancelled;
  {
    const std::scoped_lock lock(mutex_);
    hasCome_ = true;
    cancelled = request_;
  }
  // Outside the lock: who cancels a request lets go of what it holds.
  if (cancelled) cancelled->cancel();
}

}  // namespace orvane::cli
