// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Services/EULA/EULAComposer.h>
#include <Orvane/Services/EULA/EULAService.h>

namespace orvane {

Operation<Unit> EULAService::acceptTerms() const { return post<Unit>(*this, EULAComposer()); }

RequestHandle EULAService::acceptTerms(Completion<Unit> then) const {
  return acceptTerms().start(std::move(then));
}

}  // namespace orvane
