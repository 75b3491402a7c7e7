// SPDX-License-Identifier: Apache-2.0
// The base of every enumeration whose cases carry data.
#pragma once

#include <Orvane/Platform/Hash.h>

#include <compare>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace orvane {

/// Lets a set of lambdas serve as one visitor.
template <class... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};

/// The order of two texts by their bytes, for cases that carry one: libc++ 14 has no `<=>` for
/// texts, nor for variants.
[[nodiscard]] constexpr std::strong_ordering orderOf(std::string_view left,
                                                     std::string_view right) noexcept {
  return left.compare(right) <=> 0;
}

/// Holds exactly one of `Cases`: small structs that carry a case's data, or an enumeration of the
/// cases without data. Equality, order and hash look at the case and its data. Enumerations derive
/// from it and add a factory per case.
template <class... Cases>
class OneOf {
 public:
  /// Of that case.
  template <class Case>
    requires(std::same_as<Case, Cases> || ...)
  OneOf(Case value) : value_(std::move(value)) {}  // NOLINT(google-explicit-constructor)

  /// True when it is a `Case`.
  template <class Case>
  [[nodiscard]] bool is() const noexcept {
    return std::holds_alternative<Case>(value_);
  }

  /// The data of the case `Case`, or null when it is another one.
  template <class Case>
  [[nodiscard]] const Case* as() const noexcept {
    return std::get_if<Case>(&value_);
  }

  /// Calls the one of `functions` that takes the data of the case at hand.
  template <class... Functions>
  decltype(auto) match(Functions&&... functions) const {
    return std::visit(Overloaded<std::decay_t<Functions>...>{std::forward<Functions>(functions)...},
                      value_);
  }

  [[nodiscard]] HashValue hashValue() const {
    return {hashCombine(value_.index(),
                        std::visit([](const auto& data) { return hashOfCase(data); }, value_))};
  }

  friend bool operator==(const OneOf&, const OneOf&) = default;
  /// By the order in which the cases stand, then by their data.
  friend std::strong_ordering operator<=>(const OneOf& left, const OneOf& right) {
    if (const auto order = left.value_.index() <=> right.value_.index(); order != 0) return order;
    const auto toTheSameCase = [&right]<class Case>(const Case& data) -> std::strong_ordering {
      return data <=> *std::get_if<Case>(&right.value_);
    };
    return std::visit(toTheSameCase, left.value_);
  }

 private:
  template <class Case>
  static std::size_t hashOfCase(const Case& data) {
    if constexpr (std::is_empty_v<Case>) {
      return 0;
    } else {
      return std::hash<Case>{}(data);
    }
  }

  std::variant<Cases...> value_;
};

}  // namespace orvane
