// SPDX-License-Identifier: Apache-2.0
// A move-only callable: the form in which handlers, jobs and factories are kept.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace orvane {

/// A move-only callable: see `UniqueFunction<R(Arguments...)>`.
template <class Signature>
class UniqueFunction;

/// Owns any callable of the given signature, move-only ones included (a `std::promise` fits in).
/// Small callables are kept in place. An empty one may be called: where it returns nothing it does
/// nothing. A call never lets an exception out: one that tries ends the process (`std::terminate`),
/// so that nothing unwinds through a C library.
template <class R, class... Arguments>
class UniqueFunction<R(Arguments...)> {
 public:
  UniqueFunction() noexcept = default;
  /// An empty one.
  UniqueFunction(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor)

  /// Holds `callable`; a null pointer to a function, and an empty std::function, make an empty one.
  template <class Callable>
    requires(!std::same_as<std::remove_cvref_t<Callable>, UniqueFunction> &&
             std::is_invocable_r_v<R, std::decay_t<Callable>&, Arguments...>)
  UniqueFunction(Callable&& callable) {  // NOLINT(google-explicit-constructor)
    using Stored = std::decay_t<Callable>;
    if constexpr (!std::is_function_v<std::remove_reference_t<Callable>>) {
      if constexpr (requires { callable == nullptr; }) {
        if (callable == nullptr) return;
      }
    }
    if constexpr (fitsInPlace<Stored>) {
      ::new (static_cast<void*>(storage_)) Stored(std::forward<Callable>(callable));
    } else {
      ::new (static_cast<void*>(storage_)) Stored*(new Stored(std::forward<Callable>(callable)));
    }
    operations_ = &operationsOf<Stored>;
  }

  /// Leaves an empty one behind.
  UniqueFunction(UniqueFunction&& other) noexcept { take(other); }
  /// Leaves an empty one behind.
  UniqueFunction& operator=(UniqueFunction&& other) noexcept {
    if (this != &other) {
      reset();
      take(other);
    }
    return *this;
  }
  UniqueFunction(const UniqueFunction&) = delete;
  UniqueFunction& operator=(const UniqueFunction&) = delete;
  ~UniqueFunction() { reset(); }

  /// True when it holds a callable.
  explicit operator bool() const noexcept { return operations_ != nullptr; }

  /// Calls it. An empty one that should answer something must not be called.
  R operator()(Arguments... arguments) noexcept {
    if constexpr (std::is_void_v<R>) {
      if (operations_ == nullptr) return;
    }
    return operations_->call(storage_, std::forward<Arguments>(arguments)...);
  }

 private:
  struct Operations {
    R (*call)(void*, Arguments&&...);
    void (*relocate)(void* from, void* to) noexcept;
    void (*destroy)(void*) noexcept;
  };

  static constexpr std::size_t capacity = 6 * sizeof(void*);

  template <class Stored>
  static constexpr bool fitsInPlace =
      sizeof(Stored) <= capacity &&
      alignof(Stored) <= alignof(std::max_align_t) && std::is_nothrow_move_constructible_v<Stored>;

  template <class Stored>
  static Stored& stored(void* storage) noexcept {
    if constexpr (fitsInPlace<Stored>) {
      return *std::launder(static_cast<Stored*>(storage));
    } else {
      return **std::launder(static_cast<Stored**>(storage));
    }
  }

  template <class Stored>
  static constexpr Operations operationsOf{
      [](void* storage, Arguments&&... arguments) -> R {
        return stored<Stored>(storage)(std::forward<Arguments>(arguments)...);
      },
      [](void* from, void* to) noexcept {
        if constexpr (fitsInPlace<Stored>) {
          ::new (to) Stored(std::move(stored<Stored>(from)));
          stored<Stored>(from).~Stored();
        } else {
          ::new (to) Stored*(&stored<Stored>(from));
        }
      },
      [](void* storage) noexcept {
        if constexpr (fitsInPlace<Stored>) {
          stored<Stored>(storage).~Stored();
        } else {
          delete &stored<Stored>(storage);
        }
      }};

  void take(UniqueFunction& other) noexcept {
    if (other.operations_ == nullptr) return;
    other.operations_->relocate(other.storage_, storage_);
    operations_ = std::exchange(other.operations_, nullptr);
  }

  void reset() noexcept {
    // Emptied first: the callable's destructor may come back to this object.
    if (const Operations* operations = std::exchange(operations_, nullptr)) {
      operations->destroy(storage_);
    }
  }

  alignas(std::max_align_t) std::byte storage_[capacity];
  const Operations* operations_ = nullptr;
};

}  // namespace orvane
