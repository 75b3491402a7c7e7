// SPDX-License-Identifier: Apache-2.0
// Small stores shared by all services of a process. Every one of them may be used from any thread.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Platform/Export.h>

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace orvane {

/// Keeps, for each identity, how far the device's clock is from the server's. Called from any
/// thread, several at once too.
class ORVANE_EXPORT TimeOffsetStore {
 public:
  TimeOffsetStore() = default;
  TimeOffsetStore(const TimeOffsetStore&) = delete;
  TimeOffsetStore& operator=(const TimeOffsetStore&) = delete;
  virtual ~TimeOffsetStore();

  /// Seconds to add to the device's clock; absent when it has not been found wrong.
  [[nodiscard]] virtual std::optional<double> get(const Identity& identity) const = 0;
  /// Absent forgets the offset.
  virtual void set(const Identity& identity, std::optional<double> offset) = 0;
};

/// The rule by which entries of a `TimeMonitoringStore` expire. Called from any thread, several at
/// once too, under the store's lock: it must not use the store.
class ORVANE_EXPORT TimeMonitor {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;  ///< Of a clock that is never set.

  TimeMonitor() = default;
  TimeMonitor(const TimeMonitor&) = delete;
  TimeMonitor& operator=(const TimeMonitor&) = delete;
  virtual ~TimeMonitor();

  /// The time to note for an entry that is stored now, of a clock that is never set.
  [[nodiscard]] virtual TimePoint now() const = 0;
  /// Whether an entry stored at that time is to be forgotten by now.
  [[nodiscard]] virtual bool hasExpired(TimePoint stored) const = 0;
};

/// A keyed store whose entries a `TimeMonitor` expires. `Interface` is what it implements: a class
/// with `get` and `set` as below.
template <class Key, class Value, class Interface>
class TimeMonitoringStore : public Interface {
 public:
  /// A store whose entries `timeMonitor` expires.
  explicit TimeMonitoringStore(std::shared_ptr<TimeMonitor> timeMonitor)
      : timeMonitor_(std::move(timeMonitor)) {}

  /// The value, or absent when there is none or it has expired.
  [[nodiscard]] std::optional<Value> get(const Key& key) const override {
    const std::scoped_lock lock(mutex_);
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return std::nullopt;
    if (timeMonitor_->hasExpired(entry->second.stored)) {
      entries_.erase(entry);
      return std::nullopt;
    }
    return entry->second.value;
  }

  /// Stores a value from now on; absent removes the entry.
  void set(const Key& key, std::optional<Value> value) override {
    const std::scoped_lock lock(mutex_);
    if (value) {
      entries_.insert_or_assign(key, Entry{*std::move(value), timeMonitor_->now()});
    } else {
      entries_.erase(key);
    }
  }

 private:
  struct Entry {
    Value value;
    TimeMonitor::TimePoint stored;
  };

  const std::shared_ptr<TimeMonitor> timeMonitor_;
  mutable std::mutex mutex_;
  mutable std::map<Key, Entry> entries_;
};

/// A store in memory, of `Value`s by identity, that forgets nothing by itself. `Interface` is what
/// it implements: a class with `get` and `set` as below.
template <class Interface, class Value>
class MemoryStore final : public Interface {
 public:
  /// The value stored last; absent where there is none.
  [[nodiscard]] std::optional<Value> get(const Identity& identity) const override {
    const std::scoped_lock lock(mutex_);
    const auto found = values_.find(identity);
    return found == values_.end() ? std::nullopt : std::optional<Value>(found->second);
  }

  /// Stores a value; absent removes it.
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
  std::map<Identity, Value> values_;
};

/// Keeps clock offsets in memory, so that a device with a wrong clock pays once per process.
using MemoryTimeOffsetStore = MemoryStore<TimeOffsetStore, double>;

}  // namespace orvane
