// SPDX-License-Identifier: Apache-2.0
// How a user accepts the programme's terms.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Platform/Export.h>

#include <utility>

namespace orvane {

/// Records that the current user accepts the programme's terms.
class ORVANE_EXPORT EULAService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit EULAService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Accepts the terms. Any successful answer counts, an empty one included.
  Operation<Unit> acceptTerms() const;
  RequestHandle acceptTerms(Completion<Unit> then) const;
};

}  // namespace orvane
