// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Core/Once.h>
#include <Orvane/Platform/SystemTimeZone.h>
#include <Orvane/Platform/Text.h>

namespace orvane {
namespace {

// What is to be sent, or the error that keeps it from being sent.
struct Outgoing {
  URL url;
  std::string body;
  Headers headers;
};

Result<Outgoing> compose(const URLComposer& composer, OrvaneDetails details) {
  std::optional<URL> url = composer.url(details);
  if (takeUnknownSystemTimeZone()) {
    log.w("Days are those of UTC because the machine's time zone is not known.");
  }
  if (!url) return NetworkError::malformedRequest;
  Outgoing outgoing{*std::move(url), {}, {}};
  if (auto body = composer.body()) {
    if (!body->value()) return body->errorOr(NetworkError::malformedRequest);
    outgoing.body = std::move(body->value()->bytes);
    outgoing.headers = std::move(body->value()->headers);
  }
  if (auto header = composer.additionalHeader()) outgoing.headers.insert(*std::move(header));
  // Last, since merging keeps what is there: the body's headers must describe the body.
  outgoing.headers.merge(std::move(details.headers));
  return outgoing;
}

// A call under way. The closures of its steps own it, and never the service, which may be gone. Its
// box is apart, so that who keeps the handle does not keep the handler.
struct Call : std::enable_shared_from_this<Call> {
  Call(const std::shared_ptr<RequestManager>& manager, Verb sent,
       std::unique_ptr<const URLComposer> by, AnswerHandler handler)
      : requestManager(manager), verb(sent), composer(std::move(by)), answer(std::move(handler)) {}

  const std::shared_ptr<RequestManager> requestManager;
  const Verb verb;
  const std::unique_ptr<const URLComposer> composer;
  AnswerHandler answer;
  const std::shared_ptr<RequestBox> box = std::make_shared<RequestBox>();

  void detailsArrived(Result<OrvaneDetails> details) {
    if (box->cancelled()) return;
    if (!details.value()) return fail(details.errorOr(NetworkError::unknown));
    Result<Outgoing> outgoing = compose(*composer, *std::move(details).value());
    if (!outgoing.value()) return fail(*std::move(outgoing).error());
    send(*std::move(outgoing).value());
  }

  void send(Outgoing outgoing) {
    box->step([&] {
      return requestManager->send(verb, std::move(outgoing.url), std::move(outgoing.body),
                                  std::move(outgoing.headers),
                                  once([self = shared_from_this()](Result<std::string> response) {
                                    self->responseArrived(std::move(response));
                                  }));
    });
  }

  void responseArrived(Result<std::string> response) {
    if (!box->cancelled()) answer(*box, std::move(response));
  }

  void fail(Error error) { answer(*box, Unsent{std::move(error)}); }
};

}  // namespace

RequestHandle call(const SerializableService& service, Verb verb,
                   std::unique_ptr<const URLComposer> composer, AnswerHandler answer) {
  const auto call = std::make_shared<Call>(service.requestManager(), verb, std::move(composer),
                                           std::move(answer));
  // Copies: an answer inside the call may be the end of the service.
  const auto resolver = std::shared_ptr(service.orvaneDetailsResolver());
  const auto identity = Identity(service.identity());
  call->box->step([&] {
    return resolver->resolve(identity, once([self = call](Result<OrvaneDetails> details) {
                               self->detailsArrived(std::move(details));
                             }));
  });
  return call->box;
}

}  // namespace orvane
