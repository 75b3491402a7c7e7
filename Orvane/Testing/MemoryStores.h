// SPDX-License-Identifier: Apache-2.0
// The store of user identifiers, kept in memory, and the clock by which a test lets entries expire.
#pragma once

#include <Orvane/Common/Stores.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Testing/Export.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

namespace orvane {

/// Keeps user identifiers in memory.
using MemoryUserIDStore = MemoryStore<UserIDStore, std::string>;

/// Expires entries by a clock that only the test moves. Any thread.
class ORVANE_TESTING_EXPORT MovableTimeMonitor final : public TimeMonitor {
 public:
  /// Entries last for `lifetime`.
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
