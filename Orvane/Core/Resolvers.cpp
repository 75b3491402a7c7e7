// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Container+Network.h>
#include <Orvane/Core/Once.h>
#include <Orvane/Core/Resolvers.h>
#include <Orvane/Platform/Recycled.h>

namespace orvane {
namespace {

constexpr std::string_view apiPath = "kavra/api/sdk";
// Reserved for examples (RFC 2606): nothing answers there.
constexpr std::string_view mockRoot = "https://mock.example";
constexpr std::string_view mockUserID = "1234";

constexpr std::int64_t unauthorized = 401;

// Of a device's clock and a server's at least one is not to be believed where they are further
// apart.
constexpr Seconds century{100 * 365.25 * 24 * 60 * 60};

// The API root, or why there is none: a request needs a scheme and a host to go to.
Result<URL> apiURLBelow(const Result<URL>& baseURL) {
  if (!baseURL.value()) return baseURL.errorOr(NetworkError::unknown);
  const URL& root = *baseURL.value();
  if (!root.hasHost()) return NetworkError::malformedRequest;
  return *root.appendingPathComponent(apiPath);
}

// How far the server's clock is ahead of the device's, where a wrong clock may be the reason why a
// token was refused.
std::optional<Seconds> clockOffsetIn(const Error& error) {
  const auto* networkError = error.as<NetworkError>();
  if (networkError == nullptr || networkError->statusCode() != unauthorized) return std::nullopt;
  const std::optional<Date> serverDate = networkError->serverDate();
  if (!serverDate) return std::nullopt;
  const Seconds offset = *serverDate - DeviceClock::now();
  // Written so that what is not a number does not pass.
  if (!(offset >= -century && offset <= century)) return std::nullopt;
  return offset;
}

// Delivers an outcome on the main queue, unless the request is cancelled before it gets there.
void deliver(std::shared_ptr<RequestBox> box, Completion<OrvaneDetails> then,
             Result<OrvaneDetails> outcome) {
  MainQueue::main().async(
      [box = std::move(box), then = std::move(then), outcome = std::move(outcome)]() mutable {
        box->complete(then, std::move(outcome));
      });
}

// One authenticated resolution under way. It lives in the closures of its steps, one after the
// other.
struct Resolution : std::enable_shared_from_this<Resolution> {
  Resolution(const ResolverCollaborators& by, const Identity& of, Completion<OrvaneDetails> handler)
      : collaborators(by), identity(of), then(std::move(handler)) {}

  const ResolverCollaborators collaborators;
  const Identity identity;
  Completion<OrvaneDetails> then;
  const std::shared_ptr<RequestBox> box = std::make_shared<RequestBox>();
  std::optional<URL> apiURL;
  Headers headers;
  bool mayRetry = true;

  void start() {
    box->step([&] {
      return collaborators.endpointResolver->resolveOrvaneURL(
          identity.apiKey, once([self = shared_from_this()](const Result<URL>& baseURL) {
            self->baseURLArrived(baseURL);
          }));
    });
  }

  void baseURLArrived(const Result<URL>& baseURL) {
    if (box->cancelled()) return;
    Result<URL> root = apiURLBelow(baseURL);
    if (!root.value()) return fail(*std::move(root).error());
    apiURL = std::move(root).value();
    askForToken(collaborators.offsetStore->get(identity));
  }

  void askForToken(std::optional<double> offset) {
    box->step([&] {
      return collaborators.tokenResolver->resolve(
          identity, offset, once([self = shared_from_this()](const Result<std::string>& token) {
            self->tokenArrived(token);
          }));
    });
  }

  void tokenArrived(const Result<std::string>& token) {
    if (box->cancelled()) return;
    if (!token.value()) return fail(token.errorOr(NetworkError::unknown));
    headers = {{"Authorization", "Bearer " + *token.value()}};
    box->step([&] {
      return collaborators.userIdentifier->userID(
          identity, *apiURL, headers, once([self = shared_from_this()](Result<std::string> userID) {
            self->userIDArrived(std::move(userID));
          }));
    });
  }

  void userIDArrived(Result<std::string> userID) {
    if (box->cancelled()) return;
    if (userID.value()) {
      return succeed({*std::move(apiURL), std::move(headers), *std::move(userID).value()});
    }
    const Error error = userID.errorOr(NetworkError::unknown);
    const std::optional<Seconds> offset = clockOffsetIn(error);
    if (!offset || !std::exchange(mayRetry, false)) return fail(error);
    collaborators.offsetStore->set(identity, offset->count());
    askForToken(collaborators.offsetStore->get(identity));
  }

  void succeed(OrvaneDetails details) { deliver(box, std::move(then), std::move(details)); }
  void fail(Error error) { deliver(box, std::move(then), std::move(error)); }
};

}  // namespace

OrvaneDetailsResolver::~OrvaneDetailsResolver() = default;
UnauthenticatedOrvaneDetailResolverProtocol::~UnauthenticatedOrvaneDetailResolverProtocol() =
    default;

std::shared_ptr<TokenOffsettingOrvaneDetailsResolver> TokenOffsettingOrvaneDetailsResolver::make(
    Container& container) {
  return std::make_shared<TokenOffsettingOrvaneDetailsResolver>(injectCollaborators(container));
}

RequestHandle TokenOffsettingOrvaneDetailsResolver::resolve(const Identity& identity,
                                                            Completion<OrvaneDetails> then) {
  const auto resolution = makeRecycled<Resolution>(collaborators_, identity, std::move(then));
  resolution->start();
  return resolution->box;
}

RequestHandle UnauthenticatedOrvaneDetailResolver::resolve(const Identity& identity,
                                                           Completion<OrvaneDetails> then) {
  auto box = std::make_shared<RequestBox>();
  auto baseURLArrived = [box, then = std::move(then)](const Result<URL>& baseURL) mutable {
    if (box->cancelled()) return;
    Result<URL> root = apiURLBelow(baseURL);
    Result<OrvaneDetails> details =
        root ? Result<OrvaneDetails>({*std::move(root).value(), {}, {}}) : *std::move(root).error();
    deliver(std::move(box), std::move(then), std::move(details));
  };
  box->step([&] {
    return collaborators_.endpointResolver->resolveOrvaneURL(identity.apiKey,
                                                             once(std::move(baseURLArrived)));
  });
  return box;
}

RequestHandle MockOrvaneResolver::resolve(const Identity&, Completion<OrvaneDetails> then) {
  auto box = std::make_shared<RequestBox>();
  box->complete(then, OrvaneDetails{*URL::parse(mockRoot), {}, std::string(mockUserID)});
  return box;
}

}  // namespace orvane
