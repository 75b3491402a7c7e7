// SPDX-License-Identifier: Apache-2.0
// Resolvers that answer what a test tells them and remember what they were asked.
#pragma once

#include <Orvane/Common/Resolvers.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Testing/Export.h>
#include <Orvane/Testing/Script.h>

#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Details of a backend that does not exist (RFC 2606), of user "42" with the token "token".
[[nodiscard]] ORVANE_TESTING_EXPORT OrvaneDetails exampleDetails();

/// Answers backend details or an error; `exampleDetails()` at once until it is told otherwise. (The
/// resolvers that work for real answer on the main queue: `AnswerTime::onMainQueue`.)
class ORVANE_TESTING_EXPORT FixedOrvaneDetailsResolver final
    : public OrvaneDetailsResolver,
      public Script<Identity, OrvaneDetails> {
 public:
  /// Answers `answer` until it is told otherwise.
  explicit FixedOrvaneDetailsResolver(Answer answer = exampleDetails());
  ~FixedOrvaneDetailsResolver() override;

  RequestHandle resolve(const Identity& identity, Completion<OrvaneDetails> then) override;
};

/// What a `TokenResolver` is asked.
struct TokenQuestion {
  Identity identity;  ///< In whose name.
  /// Seconds to add to the local clock; absent as long as it has not been found wrong.
  std::optional<double> offset;

  friend bool operator==(const TokenQuestion&, const TokenQuestion&) = default;
};

/// Answers tokens; "token" at once until it is told otherwise.
class ORVANE_TESTING_EXPORT FixedTokenResolver final : public TokenResolver,
                                                       public Script<TokenQuestion, std::string> {
 public:
  /// Answers `answer` until it is told otherwise.
  explicit FixedTokenResolver(Answer answer = std::string("token"));
  ~FixedTokenResolver() override;

  RequestHandle resolve(const Identity& identity, std::optional<double> offset,
                        Completion<std::string> resultHandler) override;
};

/// Answers base URLs, asked with an API key; "https://backend.example" at once until it is told
/// otherwise.
class ORVANE_TESTING_EXPORT FixedEndpointResolver final : public EndpointResolver,
                                                          public Script<std::string, URL> {
 public:
  /// Answers `answer` until it is told otherwise.
  explicit FixedEndpointResolver(Answer answer = *URL::parse("https://backend.example"));
  ~FixedEndpointResolver() override;

  RequestHandle resolveOrvaneURL(const std::string& apiKey, Completion<URL> then) override;
};

/// Names every device the same.
class ORVANE_TESTING_EXPORT FixedDeviceIdentifier final : public DeviceIdentifier {
 public:
  /// Whose name is `identifier`.
  explicit FixedDeviceIdentifier(std::string identifier = "device-1");
  ~FixedDeviceIdentifier() override;

  [[nodiscard]] std::string current() const override { return identifier_; }

 private:
  const std::string identifier_;
};

}  // namespace orvane
