// SPDX-License-Identifier: Apache-2.0
// The small stores of a host, kept in memory, and the clock by which a test lets entries expire.
#pragma once

#include <Orvane/Common/Stores.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Platform/Export.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace orvane {

/// A store in memory, of `Value`s by identity, that never forgets. Any thread.
template <class Interface, class Value>
class MemoryStore final : public Interface {
 public:
  [[nodiscard]] std::optional<Value> get(const Identity& identity) const override {
    const std::scoped_lock lock(mutex_);
    const auto found = values_.find(identity);
    return found == values_.end() ? std::nullopt : std::optional<Value>(found->second);
  }

  void set(const Identity& identity, std::optional<Value> value) override {
    const std::scoped_lock lock(mutex_);
    if (value) {
      values_.insert_or_assign(identity, *std::move(value));
    } else {
      values_.erase(identity);
    }
  }

 private:
  mutable std::mutex mutex_;
  std::unordered_map<Identity, Value> values_;
};

using MemoryUserIDStore = MemoryStore<UserIDStore, std::string>;
using MemoryTimeOffsetStore = MemoryStore<TimeOffsetStore, double>;

/// Expires entries by a clock that only the test moves. Any thread.
class ORVANE_EXPORT MovableTimeMonitor final : public TimeMonitor {
 public:
  explicit MovableTimeMonitor(std::chrono::seconds lifetime = std::chrono::hours(1));
  ~MovableTimeMonitor() override;

  /// The one that doubles share. The library's user-id store keeps the monitor that was registered
  /// when it was first used, for the life of the process, so that it had better be always the same.
  [[nodiscard]] static const std::shared_ptr<MovableTimeMonitor>& shared();

  /// Lets time pass.
  void advance(std::chrono::seconds time) noexcept { seconds_ += time.count(); }
  /// Lets so much time pass that everything stored so far has expired.
  void expireAll() noexcept { advance(lifetime_); }

  [[nodiscard]] TimePoint now() const override;
  /// True from the moment on at which an entry is as old as the lifetime.
  [[nodiscard]] bool hasExpired(TimePoint stored) const override;

 private:
  const std::chrono::seconds lifetime_;
  std::atomic<std::chrono::seconds::rep> seconds_{0};
};

}  // namespace orvane
