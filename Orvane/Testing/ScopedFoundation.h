// SPDX-License-Identifier: Apache-2.0
// A whole foundation of doubles in the shared container, for the time of a test.
#pragma once

#include <Orvane/Common/Container.h>
#include <Orvane/Testing/Export.h>
#include <Orvane/Testing/FixedResolvers.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/ScriptedDownloader.h>
#include <Orvane/Testing/ScriptedRequestManager.h>

#include <cstdint>
#include <memory>

namespace orvane {

/// Registers a double for everything that services take from `Container::common()`, and puts back
/// what was registered before when its scope ends. Services that were built meanwhile keep their
/// doubles.
///
/// ```cpp
/// ScopedFoundation foundation;
/// foundation.requestManager->answer(R"({"userId":"42"})");
/// UserService{Identity{"key"}}.fetch().start([](Result<User> user) { … });   // inside the call
/// ```
///
/// The user identifiers that the library caches outlive a test. With `Resolution::real`, give each
/// test an identity of its own, or let `timeMonitor->expireAll()`.
class ORVANE_TESTING_EXPORT ScopedFoundation {
 public:
  /// How services find out the backend's details.
  enum class Resolution : std::uint8_t {
    fixed,  ///< From `detailsResolver`.
    real,   ///< As in earnest, from the doubles of what that needs; drain the main queue.
  };

  /// Registers the doubles, and says how services find out the backend's details.
  explicit ScopedFoundation(Resolution resolution = Resolution::fixed);
  ~ScopedFoundation();
  ScopedFoundation(const ScopedFoundation&) = delete;
  ScopedFoundation& operator=(const ScopedFoundation&) = delete;

  /// The transport: what the backend answers.
  const std::shared_ptr<ScriptedRequestManager> requestManager;
  /// Used with `Resolution::fixed`.
  const std::shared_ptr<FixedOrvaneDetailsResolver> detailsResolver;
  const std::shared_ptr<FixedTokenResolver> tokenResolver;        ///< Used with `Resolution::real`.
  const std::shared_ptr<FixedEndpointResolver> endpointResolver;  ///< Used with `Resolution::real`.
  const std::shared_ptr<MemoryTimeOffsetStore> offsetStore;  ///< How far the device's clock is off.
  const std::shared_ptr<FixedDeviceIdentifier> deviceIdentifier;  ///< The name of the device.
  const std::shared_ptr<ScriptedDownloader> downloader;           ///< What downloads bring.
  /// `MovableTimeMonitor::shared()`.
  const std::shared_ptr<MovableTimeMonitor> timeMonitor;

 private:
  Container::Registrations former_;
};

}  // namespace orvane
