// SPDX-License-Identifier: Apache-2.0
// A set as an argument.
#pragma once

#include <concepts>
#include <set>
#include <utility>

namespace orvane {

/// What stands in braces as the argument of an operation, or a std::set: `{events, scores}`.
///
/// Not the std::set itself, since a list in braces within a `co_await` is more than GCC 12 can take
/// where a constructor with a std::initializer_list is meant.
template <class E>
class SetOf {
 public:
  /// No element.
  SetOf() = default;
  /// The elements of a set.
  SetOf(std::set<E> elements)  // NOLINT(google-explicit-constructor)
      : elements_(std::move(elements)) {}
  /// Those elements; what is there twice counts once.
  template <std::convertible_to<E>... Elements>
    requires(sizeof...(Elements) > 0)
  SetOf(Elements... elements) {  // NOLINT(google-explicit-constructor)
    (elements_.insert(E(std::move(elements))), ...);
  }

  /// The elements.
  [[nodiscard]] const std::set<E>& elements() const& noexcept { return elements_; }
  [[nodiscard]] std::set<E> elements() && noexcept { return std::move(elements_); }

 private:
  std::set<E> elements_;
};

}  // namespace orvane
