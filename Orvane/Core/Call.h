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

#include <functional>
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

/// For an operation whose value is not the record in the answer itself: `make` turns the outcome,
/// a `Result<Record>`, into the operation's. Decodes before it claims the box, so that a call can
/// be cancelled up to the last moment.
template <class Record, class T, class Make>
[[nodiscard]] AnswerHandler decoding(Completion<T> then, Make make) {
  return [then = std::move(then), make = std::move(make)](RequestBox& box,
                                                          Result<std::string> response) mutable {
    box.complete(then, make(decodeResponse<Record>(std::move(response))));
  };
}

/// For an operation whose value is the record in the answer.
template <class T>
[[nodiscard]] AnswerHandler decoding(Completion<T> then) {
  return decoding<T>(std::move(then), std::identity());
}

/// The four verbs, each taking the composer as a value and the handler of the operation, or what
/// `decoding` has made of it.
template <class Composer>
RequestHandle get(const SerializableService& service, Composer composer, AnswerHandler answer) {
  return call(service, Verb::get, std::make_unique<const Composer>(std::move(composer)),
              std::move(answer));
}

template <class T, class Composer>
RequestHandle get(const SerializableService& service, Composer composer, Completion<T> then) {
  return get(service, std::move(composer), decoding(std::move(then)));
}

template <class T, class Composer>
RequestHandle post(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service, Verb::post, std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

template <class T, class Composer>
RequestHandle put(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service, Verb::put, std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

template <class T, class Composer>
RequestHandle delete_(const SerializableService& service, Composer composer, Completion<T> then) {
  return call(service, Verb::delete_, std::make_unique<const Composer>(std::move(composer)),
              decoding(std::move(then)));
}

}  // namespace orvane
