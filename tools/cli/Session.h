// SPDX-License-Identifier: Apache-2.0
// What a command runs in: the settings, the installed Runtime, and the way to run a call.
#pragma once

#include "ExchangeLog.h"
#include "ExitCode.h"
#include "Interrupt.h"
#include "Output.h"
#include "Settings.h"
#include <Orvane/Common/Identity.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Runtime/Runtime.h>

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace orvane::cli {

class Session {
 public:
  Session(Settings settings, OutputStyle style, ExchangeLog::Shown shown);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] const Settings& settings() const noexcept { return settings_; }
  [[nodiscard]] Output& output() noexcept { return output_; }
  /// What went to the backend in the last call.
  [[nodiscard]] const ExchangeLog& log() const noexcept { return *log_; }

  /// What is kept of an exchange has its bodies, too. To be called before `connect`.
  void keepBodies() noexcept { keepsBodies_ = true; }
  /// The longest that a call may take.
  [[nodiscard]] std::chrono::milliseconds timeout() const { return settings_.timeout(); }

  /// A `Failure` where the command line names somebody whom the token in force does not stand for:
  /// only a token that is signed here can.
  void checkUser() const;
  /// A `Failure` for a file of certificate authorities that can't be used.
  void checkCAFile() const;

  /// Who calls, as the settings say.
  [[nodiscard]] Identity identity() const;

  /// Installs the Runtime as the settings say. To be called before the first service is made. A
  /// `Failure` for settings that can't work.
  void connect();
  /// The same for downloads of firmware, which need neither the backend nor a token.
  void connectForDownloads();

  /// Starts an operation and waits for its outcome, draining the main queue. Throws a `Failure` for
  /// an error, when the time is up, and when the user cancels.
  template <class T>
  [[nodiscard]] T call(const Operation<T>& operation) {
    Result<T> result = attempt(operation);
    if (result) return *std::move(result);
    fail(result.errorOr(NetworkError::unknown));
  }

  /// The same, with the error as a value.
  template <class T>
  [[nodiscard]] Result<T> attempt(const Operation<T>& operation) {
    return outcomeOf<T>(operation.future(), timeout());
  }

  /// Without a limit: a download may take as long as bytes keep coming.
  template <class T, StartsOperation<T> Start>
  [[nodiscard]] T download(Start&& start) {
    Result<T> result = outcomeOf<T>(Future<T>(std::forward<Start>(start)), std::nullopt);
    if (result) return *std::move(result);
    fail(result.errorOr(NetworkError::unknown));
  }

  /// Throws the `Failure` for an error of a call. Who wants the backend's own text gets it before,
  /// whatever it says.
  [[noreturn]] void fail(const Error& error);

  /// Does what can't be cancelled, and may take long: Ctrl-C ends the process meanwhile.
  template <class Work>
  auto uncancelled(Work work) {
    const Interrupt::EndsAtOnce ending(interrupt_);
    return work();
  }

  /// Prints what the output holds. Nothing of it when the user has cancelled.
  void finish() {
    uncancelled([this] { output_.flush(); });
  }

  /// The backend's identifier of the person who is signed in. Calls made afterwards do not look it
  /// up again.
  [[nodiscard]] std::string userID();

 private:
  using TimeLimit = std::optional<std::chrono::milliseconds>;

  template <class T>
  [[nodiscard]] Result<T> outcomeOf(Future<T> outcome, TimeLimit limit) {
    const bool isInTime = await(outcome.request(), limit);
    Result<T> result = outcome.get();
    if (result) return result;
    if (interrupt_.hasCome()) throw Failure(ExitCode::cancelled, "cancelled");
    if (!isInTime) throw timeIsUp();
    return result;
  }

  void describeDevice() const;
  void install(RuntimeOptions options);
  // False when the time ran out first; the request is cancelled then.
  bool await(const RequestHandle& request, TimeLimit limit);
  [[nodiscard]] Failure timeIsUp() const;
  [[nodiscard]] TransportOptions transport() const;
  [[nodiscard]] bool signsTokens() const;
  [[nodiscard]] TokenSource tokens() const;

  // First of all: threads made later inherit its signal mask.
  Interrupt interrupt_;
  const Settings settings_;
  Output output_;
  // The transport may see exchanges to the end of its thread.
  const std::shared_ptr<ExchangeLog> log_;
  bool keepsBodies_;
  std::optional<Runtime> runtime_;
};

}  // namespace orvane::cli
