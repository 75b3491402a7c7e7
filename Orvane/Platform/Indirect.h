// SPDX-License-Identifier: Apache-2.0
// An optional value kept outside its owner: for large records that are rarely there.
#pragma once

#include <Orvane/Platform/Printing.h>

#include <memory>
#include <optional>
#include <utility>

namespace orvane {

/// Like `std::optional<T>`, but one pointer in size: the value, when there is one, lives on the
/// heap. Copies are deep, equality compares the values, and `T` may be incomplete where it is a
/// member.
template <class T>
class Indirect {
 public:
  /// Without a value.
  Indirect() noexcept = default;
  /// Without a value.
  Indirect(std::nullopt_t) noexcept {}  // NOLINT(google-explicit-constructor)
  /// With a value, which is moved to the heap.
  Indirect(T value)  // NOLINT(google-explicit-constructor)
      : value_(std::make_unique<T>(std::move(value))) {}
  /// A copy of the value, where there is one.
  Indirect(const Indirect& other) : value_(other ? std::make_unique<T>(*other) : nullptr) {}
  Indirect(Indirect&&) noexcept = default;
  /// A copy of the value, where there is one.
  Indirect& operator=(const Indirect& other) {
    if (this != &other) *this = Indirect(other);
    return *this;
  }
  Indirect& operator=(Indirect&&) noexcept = default;
  ~Indirect() = default;

  /// True when there is a value.
  [[nodiscard]] bool has_value() const noexcept { return value_ != nullptr; }
  /// True when there is a value.
  explicit operator bool() const noexcept { return has_value(); }

  /// The value; there must be one.
  T& operator*() noexcept { return *value_; }
  const T& operator*() const noexcept { return *value_; }
  /// The value; there must be one.
  T* operator->() noexcept { return value_.get(); }
  const T* operator->() const noexcept { return value_.get(); }

  /// Replaces the value with a new one made from `arguments`.
  template <class... Arguments>
  T& emplace(Arguments&&... arguments) {
    value_ = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    return *value_;
  }
  /// Lets go of the value.
  void reset() noexcept { value_.reset(); }

  /// True when both have equal values, or neither has one.
  friend bool operator==(const Indirect& left, const Indirect& right) {
    return left && right ? *left == *right : left.has_value() == right.has_value();
  }
  /// True without a value.
  friend bool operator==(const Indirect& left, std::nullopt_t) noexcept { return !left; }

 private:
  std::unique_ptr<T> value_;
};

/// Prints the value, or "nothing".
template <TextStream Stream, class T>
Stream& operator<<(Stream& stream, const Indirect<T>& value) {
  if (!value) {
    stream << "nothing";
  } else {
    detail::print(stream, *value);
  }
  return stream;
}

}  // namespace orvane
