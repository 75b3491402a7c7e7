// SPDX-License-Identifier: Apache-2.0
// An error as a value: one small type that carries any error of the library, the host or a
// transport.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/TextStream.h>
#include <Orvane/Platform/TypeIdentity.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

class Error;

/// What was going on when an error came up, for who has to find out why. Everything may be missing.
struct ORVANE_EXPORT ErrorContext {
  /// What was asked for: the verb and the path below the API root, "GET users/42/trips". Never the
  /// query, which may tell about people.
  std::string operation{};
  /// The HTTP status of the answer (RFC 9110).
  std::optional<std::int64_t> status{};
  /// Why the backend refused, in its own words: one line of at most 500 characters, none of them a
  /// control character. Somebody else wrote it; the library never logs it.
  std::string reason{};
  /// What can't be read of an answer: the place and what was found there,
  /// "[17].events.speeding[2].timeStamp: an integer was expected, found the text "x"".
  std::string finding{};

  friend bool operator==(const ErrorContext&, const ErrorContext&) = default;
};

/// What a type needs in order to travel in an `Error`: copying, equality and a text for people.
template <class E>
concept ErrorValue = !std::same_as<E, Error> && requires(const E& error) {
  { error.message() } -> std::convertible_to<std::string>;
}
&&std::copyable<E>&& std::equality_comparable<E>;

/// Holds an error of any type and can be asked for it, and for what was going on when it came up.
/// Copies share the error, which never changes.
class ORVANE_EXPORT Error {
 public:
  /// Holds `error`.
  template <ErrorValue E>
  Error(E error)  // NOLINT(google-explicit-constructor): an error turns into an Error by itself
      : box_(std::make_shared<Box<E>>(std::move(error))) {}

  /// The error as an `E`, or null when it is of another type. Valid as long as this value.
  template <ErrorValue E>
  [[nodiscard]] const E* as() const noexcept {
    const AnyBox& bare = box_->bare();
    return bare.type() == typeid(E) ? &static_cast<const Box<E>&>(bare).error : nullptr;
  }

  /// What went wrong, in one line, for a log or a developer; not localised.
  [[nodiscard]] std::string message() const { return box_->bare().message(); }

  /// What was going on when it came up; null where nobody has said.
  [[nodiscard]] const ErrorContext* context() const noexcept { return box_->context(); }

  /// The same error with a context. What is in the context that it has already stays.
  [[nodiscard]] Error with(ErrorContext context) const;

  /// `message()` with the context around it, for people: "GET users/9: the backend refused the
  /// request with status 404: There is no such user." May hold the backend's words.
  [[nodiscard]] std::string description() const;

  /// True where another attempt may well succeed, since the error says so of itself (a member
  /// `bool isTransient() const`): the connection failed, it took too long, the backend is busy.
  [[nodiscard]] bool isTransient() const { return box_->bare().isTransient(); }

  /// Equal when both hold equal errors of one type. The context takes no part.
  friend bool operator==(const Error& left, const Error& right) {
    const AnyBox& bare = left.box_->bare();
    return &bare == &right.box_->bare() || bare.equals(right.box_->bare());
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
    /// The error without what has been put around it.
    [[nodiscard]] virtual const AnyBox& bare() const noexcept { return *this; }
    [[nodiscard]] virtual const ErrorContext* context() const noexcept { return nullptr; }
    [[nodiscard]] virtual const std::type_info& type() const noexcept = 0;
    [[nodiscard]] virtual std::string message() const = 0;
    [[nodiscard]] virtual bool equals(const AnyBox& other) const = 0;
    [[nodiscard]] virtual bool isTransient() const = 0;
  };
  class Explained;

  template <class E>
  class Box final : public AnyBox {
   public:
    explicit Box(E held) : error(std::move(held)) {}
    [[nodiscard]] const std::type_info& type() const noexcept override { return typeid(E); }
    [[nodiscard]] std::string message() const override { return error.message(); }
    [[nodiscard]] bool equals(const AnyBox& other) const override {
      return other.type() == typeid(E) && static_cast<const Box&>(other).error == error;
    }
    [[nodiscard]] bool isTransient() const override {
      if constexpr (requires { bool(error.isTransient()); }) {
        return error.isTransient();
      } else {
        return false;
      }
    }

    const E error;
  };

  explicit Error(std::shared_ptr<const AnyBox> box) noexcept : box_(std::move(box)) {}

  std::shared_ptr<const AnyBox> box_;
};

/// Prints its description.
template <TextStream Stream>
Stream& operator<<(Stream& stream, const Error& error) {
  stream << error.description();
  return stream;
}

}  // namespace orvane
