// SPDX-License-Identifier: Apache-2.0
// An optional value kept outside its owner: for large records that are rarely there.
#pragma once

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
  Indirect() noexcept = default;
  Indirect(std::nullopt_t) noexcept {}  // NOLINT(google-explicit-constructor)
  Indirect(T value)                     // NOLINT(google-explicit-constructor)
      : value_(std::make_unique<T>(std::move(value))) {}
  Indirect(const Indirect& other) : value_(other ? std::make_unique<T>(*other) : nullptr) {}
  Indirect(Indirect&&) noexcept = default;
  Indirect& operator=(const Indirect& other) {
    if (this != &other) *this = Indirect(other);
    return *this;
  }
  Indirect& operator=(Indirect&&) noexcept = default;
  ~Indirect() = default;

  [[nodiscard]] bool has_value() const noexcept { return value_ != nullptr; }
  explicit operator bool() const noexcept { return has_value(); }

  /// The value; there must be one.
  T& operator*() noexcept { return *value_; }
  const T& operator*() const noexcept { return *value_; }
  T* operator->() noexcept { return value_.get(); }
  const T* operator->() const noexcept { return value_.get(); }

  /// Replaces the value with a new one made from `arguments`.
  template <class... Arguments>
  T& emplace(Arguments&&... arguments) {
    value_ = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    return *value_;
  }
  void reset() noexcept { value_.reset(); }

  friend bool operator==(const Indirect& left, const Indirect& right) {
    return left && right ? *left == *right : left.has_value() == right.has_value();
  }
  friend bool operator==(const Indirect& left, std::nullopt_t) noexcept { return !left; }

 private:
  std::unique_ptr<T> value_;
};

}  // namespace orvane
