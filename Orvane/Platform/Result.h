// SPDX-License-Identifier: Apache-2.0
// The outcome of an asynchronous operation, and the handler that receives it.
#pragma once

#include <Orvane/Platform/Error.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Printing.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <concepts>
#include <optional>
#include <type_traits>
#include <utility>

namespace orvane {

/// The value of an operation that succeeds without one.
struct Unit {
  friend bool operator==(const Unit&, const Unit&) = default;
};

/// Prints "()".
template <TextStream Stream>
Stream& operator<<(Stream& stream, Unit) {
  stream << "()";
  return stream;
}

template <class T>
class Result;

namespace detail {

/// Says that a failure has no value, and which failure that was.
[[noreturn]] ORVANE_EXPORT void stopWithoutValue(const Error* error) noexcept;

template <class T>
inline constexpr bool isResult = false;
template <class T>
inline constexpr bool isResult<Result<T>> = true;

// Values that are made of outcomes, and so of anything that an outcome is made of.
template <class T>
inline constexpr bool isMadeOfResults = false;
template <template <class...> class Several, class... T>
inline constexpr bool isMadeOfResults<Several<Result<T>...>> = sizeof...(T) > 0;

// std::invoke without <functional>, which costs every reader of this header more than the rest of
// it: what is called is a function, or a member of the value.
template <class Callable, class Value>
std::invoke_result_t<Callable, Value> call(Callable&& callable, Value&& value) {
  using Called = std::remove_cvref_t<Callable>;
  if constexpr (std::is_member_object_pointer_v<Called>) {
    return std::forward<Value>(value).*callable;
  } else if constexpr (std::is_member_function_pointer_v<Called>) {
    return (std::forward<Value>(value).*callable)();
  } else {
    return std::forward<Callable>(callable)(std::forward<Value>(value));
  }
}

template <class T>
using ValueOrUnit = std::conditional_t<std::is_void_v<T>, Unit, std::remove_cvref_t<T>>;

}  // namespace detail

/// Success with a value, or failure with an error. A failure may come without its error (a
/// transport need not know why); then both accessors are absent, and every way on keeps it so.
///
/// Used in the manner of std::expected (C++23): `if (trip) use(trip->id);`. Reading the value of a
/// failure, which is undefined there, is a programming fault that stops the process.
template <class T>
class Result {
 public:
  using Value = T;  ///< What it holds on success.

  /// A failure without an error.
  Result() = default;
  /// A success.
  Result(T value) : value_(std::move(value)) {}  // NOLINT(google-explicit-constructor)
  /// A failure.
  Result(Error error) : error_(std::move(error)) {}  // NOLINT(google-explicit-constructor)
  /// A failure with an error of any type.
  template <ErrorValue E>
    requires(detail::isMadeOfResults<T> || !std::constructible_from<T, E>)
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
  /// True on success.
  [[nodiscard]] bool has_value() const noexcept { return value_.has_value(); }

  /// The value; of a failure, a programming fault.
  [[nodiscard]] const T& operator*() const& noexcept { return checked(), *value_; }
  [[nodiscard]] T& operator*() & noexcept { return checked(), *value_; }
  [[nodiscard]] T&& operator*() && noexcept { return checked(), *std::move(value_); }
  /// A member of the value; of a failure's, a programming fault.
  [[nodiscard]] const T* operator->() const noexcept { return checked(), &*value_; }
  [[nodiscard]] T* operator->() noexcept { return checked(), &*value_; }

  /// The value, or `substitute` on failure.
  template <class U>
  [[nodiscard]] T value_or(U&& substitute) const& {
    return value_ ? *value_ : static_cast<T>(std::forward<U>(substitute));
  }
  template <class U>
  [[nodiscard]] T value_or(U&& substitute) && {
    return value_ ? *std::move(value_) : static_cast<T>(std::forward<U>(substitute));
  }

  /// On success what `next` makes of the value, itself a `Result`; the same failure otherwise.
  template <class Next>
  auto and_then(Next&& next) const& {
    return goOn(*this, std::forward<Next>(next));
  }
  template <class Next>
  auto and_then(Next&& next) & {
    return goOn(*this, std::forward<Next>(next));
  }
  template <class Next>
  auto and_then(Next&& next) && {
    return goOn(std::move(*this), std::forward<Next>(next));
  }

  /// On success what `make` makes of the value, `Unit` where it makes nothing; the same failure
  /// otherwise.
  template <class Make>
  auto transform(Make&& make) const& {
    return convert(*this, std::forward<Make>(make));
  }
  template <class Make>
  auto transform(Make&& make) & {
    return convert(*this, std::forward<Make>(make));
  }
  template <class Make>
  auto transform(Make&& make) && {
    return convert(std::move(*this), std::forward<Make>(make));
  }

  /// On failure what `recover` makes of its error, itself a `Result<T>`; the same success, or
  /// failure without an error, otherwise.
  template <class Recover>
  Result or_else(Recover&& recover) const& {
    return Result(*this).or_else(std::forward<Recover>(recover));
  }
  template <class Recover>
  Result or_else(Recover&& recover) && {
    if (!error_) return std::move(*this);
    return detail::call(std::forward<Recover>(recover), *std::move(error_));
  }

  /// The same failure of another type. To be called on a failure.
  template <class U>
  [[nodiscard]] Result<U> failure() const {
    return error_ ? Result<U>(*error_) : Result<U>();
  }

  friend bool operator==(const Result&, const Result&) = default;

 private:
  void checked() const noexcept {
    if (!value_) detail::stopWithoutValue(error_ ? &*error_ : nullptr);
  }

  template <class Self, class Next>
  static auto goOn(Self&& self, Next&& next) {
    using Other = std::remove_cvref_t<std::invoke_result_t<Next, decltype(*std::declval<Self>())>>;
    static_assert(detail::isResult<Other>, "and_then goes on with what answers an orvane::Result");
    if (!self.value_) return self.template failure<typename Other::Value>();
    return detail::call(std::forward<Next>(next), *std::forward<Self>(self));
  }

  template <class Self, class Make>
  static auto convert(Self&& self, Make&& make) {
    using Made = std::invoke_result_t<Make, decltype(*std::declval<Self>())>;
    using Other = Result<detail::ValueOrUnit<Made>>;
    if (!self.value_) return self.template failure<typename Other::Value>();
    if constexpr (std::is_void_v<Made>) {
      detail::call(std::forward<Make>(make), *std::forward<Self>(self));
      return Other(Unit{});
    } else {
      return Other(detail::call(std::forward<Make>(make), *std::forward<Self>(self)));
    }
  }

  std::optional<T> value_;
  std::optional<Error> error_;
};

/// Prints the value as that prints itself, or what went wrong.
template <TextStream Stream, class T>
Stream& operator<<(Stream& stream, const Result<T>& result) {
  if (result.value()) {
    stream << "success: ";
    detail::print(stream, *result.value());
  } else if (result.error()) {
    stream << "failure: " << *result.error();
  } else {
    stream << "failure without an error";
  }
  return stream;
}

/// A handler for the outcome of an operation: any callable taking a `Result<T>`, also a move-only
/// one. It must not throw (that ends the process). A null handler is allowed and ignored.
template <class T>
using Completion = UniqueFunction<void(Result<T>)>;

}  // namespace orvane
