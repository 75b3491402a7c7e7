// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Core/Once.h>
#include <Orvane/Platform/SystemTimeZone.h>
#include <Orvane/Platform/Text.h>

namespace orvane {
namespace {

// Stands in a path for an identifier that is not known yet.
constexpr std::string_view anyUser = "{userId}";

constexpr std::size_t longestFinding = 500;

}  // namespace

// What is to be sent.
struct Call::Outgoing {
  URL url;
  std::string body;
  Headers headers;
};

std::string CallDescription::text(std::string_view userID) const {
  return concatenated({wireText(verb), " ", composer.path(userID.empty() ? anyUser : userID)});
}

RequestHandle Call::start() {
  // Copies: an answer inside the call may be the end of this.
  const auto box = box_;
  const auto description = description_;
  box->step([&] {
    return description->resolver->resolve(
        description->identity, once([self = shared_from_this()](Result<OrvaneDetails> details) {
          self->detailsArrived(std::move(details));
        }));
  });
  return box;
}

void Call::detailsArrived(Result<OrvaneDetails> details) {
  if (box_->cancelled()) return;
  if (!details) return notSent(details.errorOr(NetworkError::unknown));
  Result<Outgoing> outgoing = compose(*std::move(details));
  if (!outgoing) return notSent(*std::move(outgoing).error());
  send(*std::move(outgoing));
}

Result<Call::Outgoing> Call::compose(OrvaneDetails details) {
  const URLComposer& composer = description_->composer;
  std::optional<URL> url = composer.url(details);
  userID_ = std::move(details.userID);
  if (takeUnknownSystemTimeZone()) {
    log.w("Days are those of UTC because the machine's time zone is not known.");
  }
  if (!url) return NetworkError::malformedRequest;
  Outgoing outgoing{*std::move(url), {}, {}};
  if (auto body = composer.body()) {
    if (!*body) return body->errorOr(NetworkError::malformedRequest);
    outgoing.body = std::move((*body)->bytes);
    outgoing.headers = std::move((*body)->headers);
  }
  if (auto header = composer.additionalHeader()) outgoing.headers.insert(*std::move(header));
  // Last, since merging keeps what is there: the body's headers must describe the body.
  outgoing.headers.merge(std::move(details.headers));
  return outgoing;
}

void Call::send(Outgoing outgoing) {
  box_->step([&] {
    return description_->requestManager->send(
        description_->verb, std::move(outgoing.url), std::move(outgoing.body),
        std::move(outgoing.headers),
        once([self = shared_from_this()](Result<std::string> response) {
          if (!self->box_->cancelled()) self->answered(std::move(response));
        }));
  });
}

Error Call::explained(const Error& error, std::string finding) const {
  return error.with({.operation = description_->text(userID_), .finding = std::move(finding)});
}

std::string describeCall(const std::shared_ptr<const void>& source) {
  return static_cast<const CallDescription*>(source.get())->text();
}

std::string findingIn(const Error& decodingError, std::string_view body) {
  const std::size_t begin = body.find_first_not_of(" \t\r\n");
  const bool isPage = begin != std::string_view::npos && body[begin] == '<';
  return isPage ? concatenated({"JSON was expected, found ", reasonIn(body)})
                : oneLine(decodingError.message(), longestFinding);
}

}  // namespace orvane
