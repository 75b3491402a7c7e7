// SPDX-License-Identifier: Apache-2.0
// Where bearer tokens come from.
#pragma once

#include <Orvane/Common/Resolvers.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/Export.h>
#include <Orvane/Runtime/TextOrNothing.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace orvane {

/// There is no token for a person.
class ORVANE_RUNTIME_EXPORT TokenError {
 public:
  /// Why there is none.
  enum class Kind {
    signedOut,   ///< The token has been forgotten with the person who was signed in.
    unanswered,  ///< The application's function let go of its handler without calling it.
    signing,     ///< The token could not be signed.
  };

  /// For that reason.
  explicit constexpr TokenError(Kind kind) noexcept : kind_(kind) {}

  /// Why there is none.
  [[nodiscard]] constexpr Kind kind() const noexcept { return kind_; }
  [[nodiscard]] std::string message() const;
  friend constexpr bool operator==(const TokenError&, const TokenError&) = default;

 private:
  Kind kind_;
};

/// A resolver that keeps tokens and can be made to forget them: what `Runtime::signOut` asks for.
class ORVANE_RUNTIME_EXPORT KeepingTokenResolver : public TokenResolver {
 public:
  ~KeepingTokenResolver() override;

  /// Forgets what is kept for `identity`. Any thread.
  virtual void forget(const Identity& identity) = 0;
};

/// Answers one token that the application has got by itself, and replaces when there is a new one.
/// Answers inside the call.
class ORVANE_RUNTIME_EXPORT ReplaceableTokenResolver final : public KeepingTokenResolver {
 public:
  /// Answers `token` until it is replaced.
  explicit ReplaceableTokenResolver(std::string token) : token_(std::move(token)) {}

  RequestHandle resolve(const Identity& identity, std::optional<double> offset,
                        Completion<std::string> resultHandler) override;

  /// Answers another token from now on. Any thread.
  void replace(std::string token);

  /// Forgets the token, whoever is named: it belongs to the one person who was signed in. Requests
  /// fail with `TokenError::Kind::signedOut` until there is another one.
  void forget(const Identity& identity) override;

 private:
  std::mutex mutex_;
  std::optional<std::string> token_;
};

/// Asks a function of the application's, which keeps and refreshes tokens as it sees fit.
class ORVANE_RUNTIME_EXPORT FunctionTokenResolver final : public TokenResolver {
 public:
  /// Gets the identity, the seconds to add to the local clock where the token's times are computed
  /// (absent as long as the clock has not been found wrong), and a handler to call with the token,
  /// now or later, on any thread. Called on any thread, several at once too.
  using Function =
      UniqueFunction<void(const Identity&, std::optional<double> offset, Completion<std::string>)>;

  /// An empty function is a programming fault.
  explicit FunctionTokenResolver(Function function);

  /// A handler that the function drops without calling it answers
  /// `TokenError::Kind::unanswered`.
  RequestHandle resolve(const Identity& identity, std::optional<double> offset,
                        Completion<std::string> resultHandler) override;

 private:
  Function function_;
};

/// What `RuntimeOptions::tokens` can be given; each of these turns into it by itself. An empty
/// function and a null resolver count as nothing.
class ORVANE_RUNTIME_EXPORT TokenSource {
 public:
  /// Nothing: not enough to install the Runtime.
  TokenSource() = default;

  /// One token, see `ReplaceableTokenResolver`. An empty one is nothing, and so is a null pointer:
  /// what `std::getenv` answers can be handed in as it is.
  template <std::convertible_to<std::string> Text>
  TokenSource(Text&& token)  // NOLINT(google-explicit-constructor)
      : TokenSource(fixed(textOrNothing(std::forward<Text>(token)))) {}
  TokenSource(std::nullptr_t) = delete;

  /// The application's function, see `FunctionTokenResolver`.
  template <class Function>
    requires(std::is_invocable_v<std::decay_t<Function>&, const Identity&, std::optional<double>,
                                 Completion<std::string>>)
  TokenSource(Function&& function) {  // NOLINT(google-explicit-constructor)
    FunctionTokenResolver::Function wrapped = std::forward<Function>(function);
    if (wrapped) resolver_ = Made(std::make_shared<FunctionTokenResolver>(std::move(wrapped)));
  }

  /// A resolver.
  template <std::derived_from<TokenResolver> Resolver>
  TokenSource(std::shared_ptr<Resolver> resolver)  // NOLINT(google-explicit-constructor)
      : resolver_(std::shared_ptr<TokenResolver>(std::move(resolver))) {}

  /// What makes a resolver, for example `SelfSignedTokenResolver::make({.key = …})`.
  template <std::derived_from<TokenResolver> Resolver>
  TokenSource(Result<std::shared_ptr<Resolver>> made) {  // NOLINT(google-explicit-constructor)
    if (made.value()) {
      resolver_ = std::shared_ptr<TokenResolver>(*std::move(made).value());
    } else if (made.error()) {
      resolver_ = *std::move(made).error();
    }
  }

  /// The resolver, or the `ConfigurationError` that tells why there is none.
  [[nodiscard]] Result<std::shared_ptr<TokenResolver>> resolver() const;

 private:
  using Made = std::shared_ptr<TokenResolver>;

  static TokenSource fixed(std::string token);

  Result<Made> resolver_;
};

}  // namespace orvane
