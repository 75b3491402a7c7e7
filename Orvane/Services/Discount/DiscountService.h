// SPDX-License-Identifier: Apache-2.0
// The application's entry to the current user's discount.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Discount.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/SetOf.h>

#include <cstdint>
#include <set>
#include <utility>

namespace orvane {

/// Fetches what the current user's driving takes off the premium.
class ORVANE_EXPORT DiscountService : public SerializableService {
 public:
  /// What the backend is asked to take into account.
  enum class Expansion : std::uint8_t { scores };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit DiscountService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the current user's present and projected discount.
  Operation<Discount> fetchDiscount(SetOf<Expansion> expansions = {}) const;
  RequestHandle fetchDiscount(std::set<Expansion> expansions, Completion<Discount> then) const;
};

template <>
struct EnumerationTable<DiscountService::Expansion> {
  using enum DiscountService::Expansion;
  static constexpr EnumerationCase<DiscountService::Expansion> cases[] = {{scores, "scores"}};
};

}  // namespace orvane
