// SPDX-License-Identifier: Apache-2.0
// What a command runs in: the settings, the installed Runtime, and the way to run a call.
#pragma once

#include "ExitCode.h"
#include "Interrupt.h"
#include "Output.h"
#include "Settings.h"
#include <Orvane/Common/Identity.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Runtime/Runtime.h>

#include <chrono>
#include <optional>
#include <utility>

namespace orvane::cli {

class Session {
 public:
  Session(Settings settings, OutputStyle style, bool isVerbose);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] const Settings& settings() const noexcept { return settings_; }
  [[nodiscard]] Output& output() noexcept { return output_; }

  /// Who calls, as the settings say.
  [[nodiscard]] Identity identity() const;

  /// Installs the Runtime as the settings say. To be called before the first service is made. A
  /// `Failure` for settings that can't work.
  void connect();
  /// The same for downloads of firmware, which need neither the backend nor a token.
  void connectForDownloads();

  /// Starts an operation and waits for its outcome, draining the main queue. Throws a `Failure` for
  /// an error, when the time is up, and when the user cancels.
  template <class T, StartsOperation<T> Start>
  [[nodiscard]] T call(Start&& start) {
    return outcomeOf<T>(std::forward<Start>(start), timeout());
  }

  /// The same without a limit: a download may take as long as bytes keep coming.
  template <class T, StartsOperation<T> Start>
  [[nodiscard]] T download(Start&& start) {
    return outcomeOf<T>(std::forward<Start>(start), std::nullopt);
  }

  /// The backend's identifier of the person who is signed in. Calls made afterwards do not look it
  /// up again.
  [[nodiscard]] std::string userID();

 private:
  using TimeLimit = std::optional<std::chrono::milliseconds>;

  template <class T, class Start>
  [[nodiscard]] T outcomeOf(Start&& start, TimeLimit limit) {
    Future<T> outcome = future<T>(std::forward<Start>(start));
    const bool isInTime = await(outcome.request(), limit);
    Result<T> result = outcome.get();
    if (result.value()) return *std::move(result).value();
    if (interrupt_.hasCome()) throw Failure(ExitCode::cancelled, "cancelled");
    if (!isInTime) throw timeIsUp();
    throw failureOf(result.errorOr(NetworkError::unknown));
  }

  void install(RuntimeOptions options);
  // False when the time ran out first; the request is cancelled then.
  bool await(const RequestHandle& request, TimeLimit limit);
  [[nodiscard]] Failure timeIsUp() const;
  [[nodiscard]] TransportOptions transport() const;
  [[nodiscard]] TokenSource tokens() const;
  [[nodiscard]] std::chrono::milliseconds timeout() const;

  // First of all: threads made later inherit its signal mask.
  Interrupt interrupt_;
  const Settings settings_;
  Output output_;
  const bool isVerbose_;
  std::optional<Runtime> runtime_;
};

}  // namespace orvane::cli
