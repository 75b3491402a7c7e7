// SPDX-License-Identifier: Apache-2.0
// An error as a value: one small type that carries any error of the library, the host or a
// transport.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/TypeIdentity.h>

#include <concepts>
#include <memory>
#include <string>
#include <utility>

namespace orvane {

class Error;

/// What a type needs in order to travel in an `Error`: copying, equality and a text for people.
template <class E>
concept ErrorValue = !std::same_as<E, Error> && requires(const E& error) {
  { error.message() } -> std::convertible_to<std::string>;
}
&&std::copyable<E>&& std::equality_comparable<E>;

/// Holds an error of any type and can be asked for it. Copies share the error, which never changes.
class ORVANE_EXPORT Error {
 public:
  template <ErrorValue E>
  Error(E error)  // NOLINT(google-explicit-constructor): an error turns into an Error by itself
      : box_(std::make_shared<Box<E>>(std::move(error))) {}

  /// The error as an `E`, or null when it is of another type. Valid as long as this value.
  template <ErrorValue E>
  [[nodiscard]] const E* as() const noexcept {
    return box_->type() == typeid(E) ? &static_cast<const Box<E>&>(*box_).error : nullptr;
  }

  /// What went wrong, in one line, for a log or a developer; not localised.
  [[nodiscard]] std::string message() const { return box_->message(); }

  /// Equal when both hold equal errors of one type.
  friend bool operator==(const Error& left, const Error& right) {
    return left.box_ == right.box_ || left.box_->equals(*right.box_);
  }

  template <ErrorValue E>
  friend bool operator==(const Error& left, const E& right) {
    const E* held = left.as<E>();
    return held != nullptr && *held == right;
  }

 private:
  class ORVANE_EXPORT AnyBox {
   public:
    AnyBox() = default;
    AnyBox(const AnyBox&) = delete;
    AnyBox& operator=(const AnyBox&) = delete;
    virtual ~AnyBox();
    [[nodiscard]] virtual const std::type_info& type() const noexcept = 0;
    [[nodiscard]] virtual std::string message() const = 0;
    [[nodiscard]] virtual bool equals(const AnyBox& other) const = 0;
  };

  template <class E>
  class Box final : public AnyBox {
   public:
    explicit Box(E held) : error(std::move(held)) {}
    [[nodiscard]] const std::type_info& type() const noexcept override { return typeid(E); }
    [[nodiscard]] std::string message() const override { return error.message(); }
    [[nodiscard]] bool equals(const AnyBox& other) const override {
      return other.type() == typeid(E) && static_cast<const Box&>(other).error == error;
    }

    const E error;
  };

  std::shared_ptr<const AnyBox> box_;
};

}  // namespace orvane
