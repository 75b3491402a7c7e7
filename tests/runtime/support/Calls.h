// SPDX-License-Identifier: Apache-2.0
// What tests of the transport have in common.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Sanitizers.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/TransportError.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// ThreadSanitizer ends a forked process that starts a thread. AddressSanitizer's memory stays
/// locked in one that was forked while another thread took some.
inline constexpr bool mayStartThreadsInAChild = !hasThreadSanitizer;
inline constexpr bool mayForkWhileThreadsAllocate = !hasAddressSanitizer;

/// A manager that must be possible.
[[nodiscard]] inline std::shared_ptr<CurlRequestManager> managerWith(TransportOptions options) {
  return CurlRequestManager::make(std::move(options)).value().value();
}

/// Keeps a promise with the outcome.
[[nodiscard]] inline Completion<std::string> keeping(std::promise<Result<std::string>> promise) {
  return [promise = std::move(promise)](Result<std::string> result) mutable {
    promise.set_value(std::move(result));
  };
}

/// The outcome of a request, when it is there.
[[nodiscard]] inline std::future<Result<std::string>> start(RequestManager& manager, Verb verb,
                                                            const std::string& url,
                                                            std::string body = {},
                                                            Headers headers = {}) {
  std::promise<Result<std::string>> promise;
  auto future = promise.get_future();
  manager.send(verb, *URL::parse(url), std::move(body), std::move(headers),
               keeping(std::move(promise)));
  return future;
}

/// The same for a write without a body that has a deadline.
[[nodiscard]] inline std::future<Result<std::string>> startFor(CurlRequestManager& manager,
                                                               const std::string& url,
                                                               std::chrono::milliseconds time) {
  std::promise<Result<std::string>> promise;
  auto future = promise.get_future();
  manager.send(Verb::post, *URL::parse(url), {}, {}, std::chrono::steady_clock::now() + time,
               keeping(std::move(promise)));
  return future;
}

/// Sends a request and waits for what comes of it.
[[nodiscard]] inline Result<std::string> await(RequestManager& manager, Verb verb,
                                               const std::string& url, std::string body = {},
                                               Headers headers = {}) {
  return start(manager, verb, url, std::move(body), std::move(headers)).get();
}

/// The kind of a transport's failure; absent for other errors, and for none.
template <class T>
[[nodiscard]] std::optional<TransportError::Kind> kindOf(const Result<T>& result) {
  const auto* error = result.error() ? result.error()->template as<TransportError>() : nullptr;
  if (error == nullptr) return std::nullopt;
  return error->kind();
}

[[nodiscard]] inline Result<std::string> get(RequestManager& manager, const std::string& url) {
  return await(manager, Verb::get, url);
}

}  // namespace orvane
