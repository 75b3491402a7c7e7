// SPDX-License-Identifier: Apache-2.0
// The application's entry to the programme's discount scheme.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Discount.h>
#include <Orvane/Platform/Export.h>

#include <utility>

namespace orvane {

/// Fetches which scores earn which discount.
class ORVANE_EXPORT DiscountMetadataService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit DiscountMetadataService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the programme's discount scheme, the same for every user.
  Operation<DiscountMetadata> fetchDiscountMetadata() const;
  RequestHandle fetchDiscountMetadata(Completion<DiscountMetadata> then) const;
};

}  // namespace orvane
