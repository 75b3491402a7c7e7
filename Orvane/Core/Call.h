// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The road of every call: resolve, compose, send, decode, answer.
#pragma once

#include <Orvane/Coding/Codable.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Core/SerializableService.h>
#include <Orvane/Core/URLComposer.h>

#include <concepts>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace orvane {

/// What an operation of a service is made of, whatever its record: who asks whom for what. It does
/// not change, so that it can be started any number of times.
struct CallDescription {
  CallDescription(const SerializableService& service, Verb sent, const URLComposer& by)
      : identity(service.identity()),
        requestManager(service.requestManager()),
        resolver(service.orvaneDetailsResolver()),
        verb(sent),
        composer(by) {}

  const Identity identity;
  const std::shared_ptr<RequestManager> requestManager;
  const std::shared_ptr<OrvaneDetailsResolver> resolver;
  const Verb verb;
  const URLComposer& composer;

  /// The verb and the path, for people; without the identifier of the user where that is not known.
  [[nodiscard]] std::string text(std::string_view userID = {}) const;
};

/// The same with the composer that says what is asked for, all in one piece of memory.
template <class Composer>
struct ComposedCall final : CallDescription {
  static_assert(std::is_object_v<Composer>, "composers are taken over");

  ComposedCall(const SerializableService& service, Verb sent, Composer&& by)
      : CallDescription(service, sent, own), own(std::move(by)) {}

  const Composer own;
};

/// A call under way: the part of the road that all operations share, which knows bytes only. The
/// closures of its steps own it, and never the service, which may be gone. Its box is apart, so
/// that who keeps the handle does not keep the handler.
class Call : public std::enable_shared_from_this<Call> {
 public:
  explicit Call(std::shared_ptr<const CallDescription> description)
      : description_(std::move(description)) {}
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  // Where no answer comes any more, nobody is to wait for one.
  virtual ~Call() { box_->cancel(); }

  /// Sets out, and answers the handle.
  RequestHandle start();

 protected:
  /// What the transport has answered.
  virtual void answered(Result<std::string> response) = 0;
  /// What has kept the call from being sent. Apart from the former because an error may mean
  /// another thing when it comes from the transport.
  virtual void notSent(Error error) = 0;

  [[nodiscard]] RequestBox& box() noexcept { return *box_; }
  /// The error of this call, telling what was asked for.
  [[nodiscard]] Error explained(const Error& error, std::string finding = {}) const;

 private:
  struct Outgoing;

  void detailsArrived(Result<OrvaneDetails> details);
  [[nodiscard]] Result<Outgoing> compose(OrvaneDetails details);
  void send(Outgoing outgoing);

  const std::shared_ptr<const CallDescription> description_;
  const std::shared_ptr<RequestBox> box_ = std::make_shared<RequestBox>();
  // For who has to know afterwards what was asked for.
  std::string userID_;
};

/// What an answer is not, in words, for an error that tells what was found; `body` is what the
/// backend sent.
[[nodiscard]] std::string findingIn(const Error& decodingError, std::string_view body);

/// A call whose answer is a `Record`, and whose value is what `make` makes of the outcome of the
/// transport, a `Result<Record>`. Decodes before it claims the box, so that it can be cancelled up
/// to the last moment.
template <class T, class Record, auto make>
class TypedCall final : public Call {
 public:
  TypedCall(std::shared_ptr<const CallDescription> description, Completion<T> handler)
      : Call(std::move(description)), handler_(std::move(handler)) {}

 private:
  void answered(Result<std::string> response) override {
    Result<T> result = make(decoded(std::move(response)));
    if (!result && result.error()) result = explained(*result.error());
    box().complete(handler_, std::move(result));
  }

  void notSent(Error error) override { box().complete(handler_, Result<T>(explained(error))); }

  // `noData` for an empty answer where a record was expected, `invalidResponseData` for any that is
  // not a `Record`, and for a failure that comes without its error. Where the body does not matter,
  // any success will do.
  Result<Record> decoded(Result<std::string> response) {
    if (!response) return response.errorOr(NetworkError::invalidResponseData);
    if constexpr (std::same_as<Record, Unit>) {
      return Unit{};
    } else {
      if (response->empty()) return NetworkError::noData;
      Result<Record> record = decodeInPlace<Record>(*response);
      if (record) return record;
      const Error error = NetworkError::invalidResponseData;
      return explained(error, findingIn(*record.error(), *response));
    }
  }

  Completion<T> handler_;
};

/// `CallDescription::text` of the description that is the source of an operation.
[[nodiscard]] std::string describeCall(const std::shared_ptr<const void>& source);

/// An operation whose value is what `make` makes of the record in the answer.
template <class T, class Record, auto make, class Composer>
[[nodiscard]] Operation<T> operation(const SerializableService& service, Verb verb,
                                     Composer&& composer) {
  const auto start = [](const std::shared_ptr<const void>& source, Completion<T> handler) {
    return std::make_shared<TypedCall<T, Record, make>>(
               std::static_pointer_cast<const CallDescription>(source), std::move(handler))
        ->start();
  };
  std::shared_ptr<const CallDescription> description =
      std::make_shared<const ComposedCall<Composer>>(service, verb,
                                                     std::forward<Composer>(composer));
  return Operation<T>(std::move(description), start,
                      verb == Verb::get ? Effect::reads : Effect::writes, &describeCall);
}

/// The verbs, each taking the composer over: operations whose value is the record in the
/// answer.
template <class T, class Composer>
[[nodiscard]] Operation<T> get(const SerializableService& service, Composer&& composer) {
  return operation<T, T, std::identity{}>(service, Verb::get, std::forward<Composer>(composer));
}
template <class T, class Composer>
[[nodiscard]] Operation<T> post(const SerializableService& service, Composer&& composer) {
  return operation<T, T, std::identity{}>(service, Verb::post, std::forward<Composer>(composer));
}
template <class T, class Composer>
[[nodiscard]] Operation<T> put(const SerializableService& service, Composer&& composer) {
  return operation<T, T, std::identity{}>(service, Verb::put, std::forward<Composer>(composer));
}
template <class T, class Composer>
[[nodiscard]] Operation<T> delete_(const SerializableService& service, Composer&& composer) {
  return operation<T, T, std::identity{}>(service, Verb::delete_, std::forward<Composer>(composer));
}

}  // namespace orvane
