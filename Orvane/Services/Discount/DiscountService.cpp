// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Discount/DiscountComposer.h>
#include <Orvane/Services/Discount/DiscountService.h>

namespace orvane {

RequestHandle DiscountService::fetchDiscount(std::set<Expansion> expansions,
                                             Completion<Discount> then) const {
  return get(*this, DiscountComposer(std::move(expansions)), std::move(then));
}

}  // namespace orvane
