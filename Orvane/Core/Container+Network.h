// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The system's own container, in which services, resolvers and stores find one another.
#pragma once

#include <Orvane/Common/Container.h>
#include <Orvane/Core/Resolvers.h>

#include <memory>

namespace orvane {

/// The system's container, a child of `Container::common()`: made once per process, on first use.
[[nodiscard]] Container& networkContainer();

/// Stops the process: something that must be registered is not.
[[noreturn]] void stopForMissingRegistration(const char* what) noexcept;

/// What is registered for `Interface`; nothing registered stops the process.
template <class Interface>
[[nodiscard]] std::shared_ptr<Interface> injectOrStop(Container& container) {
  try {
    return container.inject<Interface>();
  } catch (const std::exception& error) {
    stopForMissingRegistration(error.what());
  }
}

/// The four collaborators of a resolver; a missing one stops the process.
[[nodiscard]] ResolverCollaborators injectCollaborators(Container& container);

}  // namespace orvane
