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
#include <variant>

namespace orvane {

/// Why a call has not been sent.
struct Unsent {
  Error error;
};

/// What became of a call: what the transport has answered, or why it was not asked. The two are
/// told apart because an error may mean another thing when it comes from the transport.
using CallOutcome = std::variant<Result<std::string>, Unsent>;

/// Receives what became of a call. It completes the box.
using AnswerHandler = UniqueFunction<void(RequestBox&, CallOutcome)>;

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

/// For an operation whose value is not the record in the answer itself: `make` turns the outcome of
/// the transport, a `Result<Record>`, into the operation's; what kept the call from being sent is
/// handed on as it is. Decodes before it claims the box, so that a call can be cancelled up to the
/// last moment.
template <class Record, class T, class Make>
[[nodiscard]] AnswerHandler decoding(Completion<T> then, Make make) {
  return [then = std::move(then), make = std::move(make)](RequestBox& box,
                                                          CallOutcome outcome) mutable {
    auto* response = std::get_if<Result<std::string>>(&outcome);
    box.complete(then, response != nullptr
                           ? Result<T>(make(decodeResponse<Record>(std::move(*response))))
                           : Result<T>(std::move(std::get<Unsent>(outcome).error)));
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
