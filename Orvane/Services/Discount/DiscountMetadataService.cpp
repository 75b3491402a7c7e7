// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Discount/DiscountMetadataComposer.h>
#include <Orvane/Services/Discount/DiscountMetadataService.h>

namespace orvane {

RequestHandle DiscountMetadataService::fetchDiscountMetadata(
    Completion<DiscountMetadata> then) const {
  return get(*this, DiscountMetadataComposer(), std::move(then));
}

}  // namespace orvane
