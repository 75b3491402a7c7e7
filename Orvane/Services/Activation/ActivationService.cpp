// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Services/Activation/ActivationComposer.h>
#include <Orvane/Services/Activation/ActivationService.h>

namespace orvane {

Operation<Unit> ActivationService::activate(std::string activationId, std::string activationCode,
                                            std::string emailAddress) const {
  return post<Unit>(*this, ActivationComposer({.activationID = std::move(activationId),
                                               .activationCode = std::move(activationCode),
                                               .email = emailAddress,
                                               .accountID = identity().externalReferenceID,
                                               .displayName = emailAddress,
                                               .deviceID = deviceIdentifier()->current()}));
}

RequestHandle ActivationService::activate(std::string activationId, std::string activationCode,
                                          std::string emailAddress, Completion<Unit> then) const {
  return activate(std::move(activationId), std::move(activationCode), std::move(emailAddress))
      .start(std::move(then));
}

}  // namespace orvane
