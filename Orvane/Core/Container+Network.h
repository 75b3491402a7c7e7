// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The system's own container, in which services, resolvers and stores find one another.
#pragma once

#include <Orvane/Common/Container.h>
#include <Orvane/Core/Resolvers.h>
#include <Orvane/Platform/Fatal.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace orvane {

/// The system's container, a child of `Container::common()`: made once per process, on first use.
[[nodiscard]] Container& networkContainer();

/// Against what a missing registration is reported.
struct RegistrationFault {
  std::string_view source = "Container+Network";
  std::uint_least32_t line = 30;
};

/// What is registered for `Interface`; nothing registered, or a factory that throws, stops the
/// process.
template <class Interface>
[[nodiscard]] std::shared_ptr<Interface> injectOrStop(Container& container,
                                                      RegistrationFault fault = {}) {
  try {
    return container.inject<Interface>();
  } catch (const std::exception& error) {
    fatal(error.what(), fault.source, fault.line);
  } catch (...) {
    fatal("a factory has failed", fault.source, fault.line);
  }
}

/// The four collaborators of a resolver; a missing one stops the process.
[[nodiscard]] ResolverCollaborators injectCollaborators(Container& container);

}  // namespace orvane
