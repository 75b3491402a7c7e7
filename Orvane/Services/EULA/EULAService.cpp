// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Services/EULA/EULAComposer.h>
#include <Orvane/Services/EULA/EULAService.h>

namespace orvane {

RequestHandle EULAService::acceptTerms(Completion<Unit> then) const {
  return post(*this, EULAComposer(), std::move(then));
}

}  // namespace orvane
