// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Memory of objects that one thread makes and another destroys, again and again.
#pragma once

#include <Orvane/Platform/Sanitizers.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace orvane {

/// Whether memory is used again at all. Not where AddressSanitizer looks for uses of what has been
/// destroyed.
inline constexpr bool recyclesMemory = !hasAddressSanitizer;

/// Blocks of one size that nobody uses, a few of them. Any thread; none ever waits for another: who
/// finds it busy goes to the system's memory. It may be used until the very end of the process.
class SpareBlocks {
 public:
  /// As many are kept, at most.
  static constexpr std::size_t most = 64;

  /// Some block; null when there is none at hand.
  [[nodiscard]] void* take() noexcept {
    if (isBusy_.test_and_set(std::memory_order_acquire)) return nullptr;
    Block* const block = first_;
    if (block != nullptr) {
      first_ = block->next;
      --count_;
    }
    isBusy_.clear(std::memory_order_release);
    return block;
  }

  /// Keeps a block, which has room for a pointer. False when it does not want it.
  [[nodiscard]] bool keep(void* memory) noexcept {
    if (isBusy_.test_and_set(std::memory_order_acquire)) return false;
    const bool hasRoom = count_ < most;
    if (hasRoom) {
      first_ = new (memory) Block{first_};
      ++count_;
    }
    isBusy_.clear(std::memory_order_release);
    return hasRoom;
  }

 private:
  struct Block {
    Block* next;
  };

  std::atomic_flag isBusy_;
  Block* first_ = nullptr;
  std::size_t count_ = 0;
};

/// Takes the memory of a `T` from those that were destroyed before, whichever thread did so.
template <class T>
class RecyclingAllocator {
 public:
  using value_type = T;

  RecyclingAllocator() = default;
  template <class U>
  RecyclingAllocator(const RecyclingAllocator<U>&) noexcept {}  // NOLINT(*-explicit-*)

  [[nodiscard]] T* allocate(std::size_t count) {
    static_assert(sizeof(T) >= sizeof(void*) && alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    void* spare = recyclesMemory && count == 1 ? spares.take() : nullptr;
    return static_cast<T*>(spare != nullptr ? spare : ::operator new(count * sizeof(T)));
  }

  void deallocate(T* memory, std::size_t count) noexcept {
    if (recyclesMemory && count == 1 && spares.keep(memory)) return;
    ::operator delete(memory);
  }

  friend bool operator==(const RecyclingAllocator&, const RecyclingAllocator&) = default;

 private:
  static inline constinit SpareBlocks spares;
};

/// A `T` in such memory. For objects of which each call makes one on one thread and destroys it on
/// another: the allocators of most systems have their threads wait for one another then.
template <class T, class... Arguments>
[[nodiscard]] std::shared_ptr<T> makeRecycled(Arguments&&... arguments) {
  return std::allocate_shared<T>(RecyclingAllocator<T>(), std::forward<Arguments>(arguments)...);
}

}  // namespace orvane
