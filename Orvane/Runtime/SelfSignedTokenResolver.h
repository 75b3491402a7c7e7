// SPDX-License-Identifier: Apache-2.0
// Tokens that the application signs itself, with a key it shares with the backend.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Runtime/Export.h>
#include <Orvane/Runtime/TokenResolvers.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace orvane {

/// How tokens are signed. Only the key is needed.
struct ORVANE_RUNTIME_EXPORT SelfSignedTokenOptions {
  /// The bytes shared with the backend; at least 32 of them (RFC 7518, section 3.2).
  std::string key{};
  /// How long a token is valid: a second to 100 years.
  std::chrono::seconds lifetime{std::chrono::minutes(10)};
  /// How long a token is used before the next one is made; in any case not beyond nine tenths of
  /// its lifetime.
  std::chrono::seconds reuse{std::chrono::minutes(1)};
};

/// Makes JSON Web Tokens signed with HMAC-SHA256 (RFC 7519). Their claims: "sub", the
/// `externalReferenceID` of the identity or, where it has none, its `apiKey`; "iat", the device's
/// clock plus the offset; "exp", the end of the lifetime. Answers inside the call.
class ORVANE_RUNTIME_EXPORT SelfSignedTokenResolver final : public KeepingTokenResolver {
 public:
  /// A key that is too short or a lifetime out of range is answered with a
  /// `ConfigurationError`.
  [[nodiscard]] static Result<std::shared_ptr<SelfSignedTokenResolver>> make(
      SelfSignedTokenOptions options);
  ~SelfSignedTokenResolver() override;

  RequestHandle resolve(const Identity& identity, std::optional<double> offset,
                        Completion<std::string> resultHandler) override;
  void forget(const Identity& identity) override;

 private:
  struct Kept {
    std::string token;
    std::optional<double> offset;
    Date issued;
  };

  explicit SelfSignedTokenResolver(SelfSignedTokenOptions options);
  [[nodiscard]] Result<std::string> token(const Identity& identity, std::optional<double> offset);
  [[nodiscard]] Result<std::string> signedToken(const Identity& identity, Date issued) const;

  const SelfSignedTokenOptions options_;
  std::mutex mutex_;
  std::unordered_map<Identity, Kept> kept_;
};

/// The bytes that a text of hexadecimal digits stands for; absent for any other text.
[[nodiscard]] ORVANE_RUNTIME_EXPORT std::optional<std::string> bytesFromHexadecimal(
    std::string_view text);

}  // namespace orvane
