// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What each thread keeps for itself.
#pragma once

namespace orvane {

/// This thread's own `T`, made when it is first asked for. It goes when the thread ends, or when
/// the process does on the main thread; destructors and exit handlers that run later still get
/// another one, which is never destroyed.
template <class T>
[[nodiscard]] T& ofThisThread() {
  // Both are trivially destroyed, and so can be read to the very end.
  thread_local bool hasEnded = false;
  thread_local T* late = nullptr;
  struct Keeper {
    T value{};
    Keeper() = default;
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
    ~Keeper() { hasEnded = true; }
  };
  if (hasEnded) {
    if (late == nullptr) late = new T{};
    return *late;
  }
  thread_local Keeper keeper;
  return keeper.value;
}

}  // namespace orvane
