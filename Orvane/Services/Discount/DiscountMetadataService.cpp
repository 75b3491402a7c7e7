// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Discount/DiscountMetadataComposer.h>
#include <Orvane/Services/Discount/DiscountMetadataService.h>

namespace orvane {

Operation<DiscountMetadata> DiscountMetadataService::fetchDiscountMetadata() const {
  return get<DiscountMetadata>(*this, DiscountMetadataComposer());
}

RequestHandle DiscountMetadataService::fetchDiscountMetadata(
    Completion<DiscountMetadata> then) const {
  return fetchDiscountMetadata().start(std::move(then));
}

}  // namespace orvane
