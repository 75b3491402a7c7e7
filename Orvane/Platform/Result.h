// SPDX-License-Identifier: Apache-2.0
// The outcome of an asynchronous operation, and the handler that receives it.
#pragma once

#include <Orvane/Platform/Error.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <optional>
#include <utility>

namespace orvane {

/// The value of an operation that succeeds without one.
struct Unit {
  friend bool operator==(const Unit&, const Unit&) = default;
};

/// Success with a value, or failure with an error. A failure may come without its error (a
/// transport need not know why); then both accessors are absent.
template <class T>
class Result {
 public:
  using Value = T;

  /// A failure without an error.
  Result() = default;
  Result(T value) : value_(std::move(value)) {}      // NOLINT(google-explicit-constructor)
  Result(Error error) : error_(std::move(error)) {}  // NOLINT(google-explicit-constructor)
  template <ErrorValue E>
    requires(!std::constructible_from<T, E>)
  Result(E error) : error_(std::move(error)) {}  // NOLINT(google-explicit-constructor)

  /// Present exactly on success.
  [[nodiscard]] const std::optional<T>& value() const& noexcept { return value_; }
  [[nodiscard]] std::optional<T>& value() & noexcept { return value_; }
  [[nodiscard]] std::optional<T>&& value() && noexcept { return std::move(value_); }

  /// Present on a failure that tells its error.
  [[nodiscard]] const std::optional<Error>& error() const& noexcept { return error_; }
  [[nodiscard]] std::optional<Error>&& error() && noexcept { return std::move(error_); }

  /// The error, or `substitute` where there is none.
  [[nodiscard]] Error errorOr(Error substitute) const {
    return error_.value_or(std::move(substitute));
  }

  /// True on success.
  explicit operator bool() const noexcept { return value_.has_value(); }

  friend bool operator==(const Result&, const Result&) = default;

 private:
  std::optional<T> value_;
  std::optional<Error> error_;
};

/// A handler for the outcome of an operation: any callable taking a `Result<T>`, also a move-only
/// one. It must not throw (that ends the process). A null handler is allowed and ignored.
template <class T>
using Completion = UniqueFunction<void(Result<T>)>;

}  // namespace orvane
