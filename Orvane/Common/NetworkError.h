// SPDX-License-Identifier: Apache-2.0
// The errors of the backend's answers and of the requests made to it.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// What went wrong between a request and the record that was to come of it. Errors of the transport
/// itself (no connection, no trust, no time left) are of the transport's own type.
class ORVANE_EXPORT NetworkError {
 public:
  /// What went wrong.
  enum class Case {
    malformedRequest,     ///< The request could not be formed; nothing was sent.
    invalidStatusCode,    ///< The backend refused; see `statusCode()` and `serverDate()`.
    invalidResponseData,  ///< The answer is not what was asked for: syntax, type or content.
    noData,               ///< The answer is empty where a record was expected.
    unknown,              ///< A failure came without its error.
  };

  static const NetworkError malformedRequest;     ///< `Case::malformedRequest`.
  static const NetworkError invalidResponseData;  ///< `Case::invalidResponseData`.
  static const NetworkError noData;               ///< `Case::noData`.
  static const NetworkError unknown;              ///< `Case::unknown`.

  /// The backend refused a request.
  /// @param statusCode the HTTP status (RFC 9110).
  /// @param serverDate the server's clock, where the answer tells it.
  [[nodiscard]] static constexpr NetworkError invalidStatusCode(
      std::int64_t statusCode, std::optional<Date> serverDate = {}) {
    return {Case::invalidStatusCode, statusCode, serverDate};
  }

  /// What went wrong.
  [[nodiscard]] constexpr Case kind() const noexcept { return kind_; }
  /// The HTTP status of `invalidStatusCode`; 0 for the other cases.
  [[nodiscard]] constexpr std::int64_t statusCode() const noexcept { return statusCode_; }
  /// The server's clock of `invalidStatusCode`, where it is known.
  [[nodiscard]] constexpr std::optional<Date> serverDate() const noexcept { return serverDate_; }

  /// How long the server wants to be left alone ("Retry-After"), where it says so.
  [[nodiscard]] constexpr std::optional<Seconds> retryAfter() const noexcept { return retryAfter_; }
  /// The same error, with what `retryAfter()` answers.
  [[nodiscard]] constexpr NetworkError withRetryAfter(std::optional<Seconds> pause) const noexcept {
    NetworkError error = *this;
    error.retryAfter_ = pause;
    return error;
  }

  /// True for the refusals that pass: 429, and 502 to 504 (RFC 6585, RFC 9110).
  [[nodiscard]] constexpr bool isTransient() const noexcept {
    return statusCode_ == 429 || (statusCode_ >= 502 && statusCode_ <= 504);
  }

  [[nodiscard]] std::string message() const;
  /// Equal when case, status and server's clock are. What the server says about a next attempt
  /// takes no part.
  friend constexpr bool operator==(const NetworkError& left, const NetworkError& right) {
    return left.kind_ == right.kind_ && left.statusCode_ == right.statusCode_ &&
           left.serverDate_ == right.serverDate_;
  }

 private:
  constexpr NetworkError(Case kind,
                         std::int64_t statusCode = 0,  // NOLINT(google-explicit-constructor)
                         std::optional<Date> serverDate = {})
      : kind_(kind), statusCode_(statusCode), serverDate_(serverDate) {}

  Case kind_;
  std::int64_t statusCode_;
  std::optional<Date> serverDate_;
  std::optional<Seconds> retryAfter_{};
};

inline constexpr NetworkError NetworkError::malformedRequest{Case::malformedRequest};
inline constexpr NetworkError NetworkError::invalidResponseData{Case::invalidResponseData};
inline constexpr NetworkError NetworkError::noData{Case::noData};
inline constexpr NetworkError NetworkError::unknown{Case::unknown};

/// What the body of a refusal says in words, for `ErrorContext::reason`: the members "message" and
/// "error" of a JSON object, the title of an HTML page, or the first line of any other text, in one
/// line of at most 500 characters without control characters; empty where it says nothing.
[[nodiscard]] ORVANE_EXPORT std::string reasonIn(std::string_view body);

/// A text of a multipart body is not UTF-8.
struct ORVANE_EXPORT DataError {
  [[nodiscard]] std::string message() const;
  friend constexpr bool operator==(const DataError&, const DataError&) = default;
};

}  // namespace orvane
