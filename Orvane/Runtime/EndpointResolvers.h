// SPDX-License-Identifier: Apache-2.0
// Where the backend is: one address for all, one for each API key, or a rule of the application's.
#pragma once

#include <Orvane/Common/Resolvers.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>
#include <Orvane/Runtime/Export.h>
#include <Orvane/Runtime/TextOrNothing.h>

#include <concepts>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace orvane {

/// The application has no backend for an API key.
struct ORVANE_RUNTIME_EXPORT UnknownAPIKey {
  [[nodiscard]] std::string message() const;
  friend constexpr bool operator==(const UnknownAPIKey&, const UnknownAPIKey&) = default;
};

/// Asks a function of the application's, which any thread may call, several at once too. Answers
/// inside the call.
class ORVANE_RUNTIME_EXPORT FunctionEndpointResolver final : public EndpointResolver {
 public:
  /// Answers the base URL for an API key, or why there is none.
  using Function = UniqueFunction<Result<URL>(const std::string& apiKey)>;

  /// An empty function is a programming fault.
  explicit FunctionEndpointResolver(Function function);

  RequestHandle resolveOrvaneURL(const std::string& apiKey, Completion<URL> then) override;

 private:
  Function function_;
};

/// What `RuntimeOptions::baseURL` can be given; each of these turns into it by itself. An empty
/// function and a null resolver count as nothing.
class ORVANE_RUNTIME_EXPORT EndpointSource {
 public:
  /// Nothing: not enough to install the Runtime.
  EndpointSource() = default;

  /// One base URL for all, for example "https://telematics.example"; a path is kept, and what
  /// services ask for follows below it ("/kavra/api/sdk/…", which is no part of the base URL). A
  /// null pointer is an empty text.
  template <std::convertible_to<std::string> Text>
  EndpointSource(Text&& baseURL)  // NOLINT(google-explicit-constructor)
      : EndpointSource(fixed(textOrNothing(std::forward<Text>(baseURL)))) {}
  EndpointSource(std::nullptr_t) = delete;
  /// The same of a URL.
  EndpointSource(const URL& baseURL)  // NOLINT(google-explicit-constructor)
      : EndpointSource(fixed(baseURL.absoluteString())) {}

  /// A base URL for each API key; any other key fails with `UnknownAPIKey`.
  EndpointSource(
      const std::map<std::string, std::string>& byAPIKey)  // NOLINT(google-explicit-constructor)
      : EndpointSource(mapped(byAPIKey)) {}

  /// The application's rule: see `FunctionEndpointResolver`.
  template <class Function>
    requires(std::is_invocable_r_v<Result<URL>, std::decay_t<Function>&, const std::string&>)
  EndpointSource(Function&& function) {  // NOLINT(google-explicit-constructor)
    FunctionEndpointResolver::Function wrapped = std::forward<Function>(function);
    if (!wrapped) return;
    resolver_ = std::shared_ptr<EndpointResolver>(
        std::make_shared<FunctionEndpointResolver>(std::move(wrapped)));
  }

  /// A resolver of the application's.
  template <std::derived_from<EndpointResolver> Resolver>
  EndpointSource(std::shared_ptr<Resolver> resolver)  // NOLINT(google-explicit-constructor)
      : resolver_(std::shared_ptr<EndpointResolver>(std::move(resolver))) {}

  /// The resolver, or the `ConfigurationError` that tells why there is none.
  [[nodiscard]] Result<std::shared_ptr<EndpointResolver>> resolver() const;

 private:
  using Made = Result<std::shared_ptr<EndpointResolver>>;

  explicit EndpointSource(Made resolver) : resolver_(std::move(resolver)) {}

  static EndpointSource fixed(const std::string& baseURL);
  static EndpointSource mapped(const std::map<std::string, std::string>& byAPIKey);

  Made resolver_;
};

}  // namespace orvane
