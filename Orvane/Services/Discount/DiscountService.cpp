// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Discount/DiscountComposer.h>
#include <Orvane/Services/Discount/DiscountService.h>

namespace orvane {

Operation<Discount> DiscountService::fetchDiscount(SetOf<Expansion> expansions) const {
  return get<Discount>(*this, DiscountComposer(std::move(expansions).elements()));
}

RequestHandle DiscountService::fetchDiscount(std::set<Expansion> expansions,
                                             Completion<Discount> then) const {
  return fetchDiscount(std::move(expansions)).start(std::move(then));
}

}  // namespace orvane
