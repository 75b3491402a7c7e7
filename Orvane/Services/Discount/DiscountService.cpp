// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Discount/DiscountComposer.h>
#include <Orvane/Services/Discount/DiscountService.h>

namespace orvane {

Operation<Discount> DiscountService::fetchDiscount(SetOf<Expansion> expansions) const {
  return get<Discount>(*this, DiscountComposer(std::move(expansions).elements()));
}

}  // namespace orvane
