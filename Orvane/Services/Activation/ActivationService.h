// SPDX-License-Identifier: Apache-2.0
// How a person joins the programme.
#pragma once

#include <Orvane/Core/DeviceNamingService.h>
#include <Orvane/Platform/Export.h>

#include <string>
#include <utility>

namespace orvane {

/// Activates a person's enrolment; the enrolment is tied to the device that this is done on.
class ORVANE_EXPORT ActivationService : public DeviceNamingService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit ActivationService(Identity identity) : DeviceNamingService(std::move(identity)) {}

  /// Activates with the id and code that the programme gave the person. The e-mail address is also
  /// sent as the name to be shown, and `Identity::externalReferenceID`, where there is one, as the
  /// account. Any successful answer counts, an empty one included.
  Operation<Unit> activate(std::string activationId, std::string activationCode,
                           std::string emailAddress) const;
  RequestHandle activate(std::string activationId, std::string activationCode,
                         std::string emailAddress, Completion<Unit> then) const;
};

}  // namespace orvane
