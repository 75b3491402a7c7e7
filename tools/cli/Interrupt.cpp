// SPDX-License-Identifier: Apache-2.0
#include "Interrupt.h"

#include "ExitCode.h"

#include <unistd.h>

#include <string_view>
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

Interrupt::EndsAtOnce::EndsAtOnce(Interrupt& interrupt) : interrupt_(interrupt) {
  const std::scoped_lock lock(interrupt_.mutex_);
  if (interrupt_.hasCome_) throw Failure(ExitCode::cancelled, "cancelled");
  interrupt_.endsAtOnce_ = true;
}

Interrupt::EndsAtOnce::~EndsAtOnce() {
  const std::scoped_lock lock(interrupt_.mutex_);
  interrupt_.endsAtOnce_ = false;
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
    if (endsAtOnce_) {
      constexpr std::string_view words = "orvane: cancelled\n";
      static_cast<void>(!::write(STDERR_FILENO, words.data(), words.size()));
      ::_exit(static_cast<int>(ExitCode::cancelled));
    }
    cancelled = request_;
  }
  // Outside the lock: who cancels a request lets go of what it holds.
  if (cancelled) cancelled->cancel();
}

}  // namespace orvane::cli
