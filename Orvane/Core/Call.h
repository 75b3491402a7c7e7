// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The road of every call: resolve, compose, send, decode, answer.
#pragma once

#include <Orvane/Coding/Codable.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Core/SerializableService.h>
#include <Orvane/Core/URLComposer.h>

#include <memory>
#include <string>
#include <utility>

namespace orvane {

/// Receives the outcome of a call's transport, or the error that kept it from being sent. It
/// completes the box.
using AnswerHandler = UniqueFunction<void(RequestBox&, Result<std::string>)>;

/// Sends what `composer` describes in the service's name. The part of the road that all operations
/// share: it knows bytes only.
[[nodiscard]] RequestHandle call(const SerializableService& service, Verb verb,
                                 std::unique_ptr<const URLComposer> composer, AnswerHandler answer);

/// The record in an answer: `noData` for an empty one, `invalidResponseData` for any that is not a
/// `T`, and for a failure that comes without its error.
template <class T>
[[nodiscard]] Result<T> decodeResponse(Result<std::string> response) {
  if (!response.value()) return response.errorOr(NetworkError::invalidResponseData);
  if (response.value()->empty()) return NetworkError::noData;
  Result<T> decoded = decodeInPlace<T>(*response.value());
  if (!decoded.value()) return NetworkError::invalidResponseData;
  return decoded;
}

/// An answer whose body does not matter: any success will do.
template <>
[[nodiscard]] inline Result<Unit> decodeResponse<Unit>(Result<std::string> response) {
  if (!response.value()) return response.errorOr(NetworkError::invalidResponseData);
  return Unit{};
}

/// Decodes before it claims the box, so that a call can be cancelled up to the last moment.
template <class T>
[[nodiscard]] AnswerHandler decoding(Completion<T> then) {
  return [then = std::move(then)](RequestBox& box, Result<std::string> response) mutable {
    box.complete(then, decodeResponse<T>(std::move(response)));
  };
}

/// The four verbs, each taking the composer as a value and the handler of the operation.
template <class T, class Composer>
RequestHandle get(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service,
              Verb::get,
              std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

template <class T, class Composer>
RequestHandle post(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service,
              Verb::post,
              std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

template <class T, class Composer>
RequestHandle put(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service,
              Verb::put,
              std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

template <class T, class Composer>
RequestHandle delete_(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service,
              Verb::delete_,
              std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

}  // namespace orvane
