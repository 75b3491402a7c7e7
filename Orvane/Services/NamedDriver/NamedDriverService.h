// SPDX-License-Identifier: Apache-2.0
// The application's entry to the further drivers that a policy names.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/NamedDriver.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// Lists and corrects the drivers that the policy of the person who is signed in names. The backend
/// tells the policy holder by the credentials.
class ORVANE_EXPORT NamedDriverService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit NamedDriverService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the named drivers.
  Operation<std::vector<NamedDriver>> fetch() const;
  RequestHandle fetch(Completion<std::vector<NamedDriver>> then) const;

  /// Sets a named driver's e-mail address and phone number, both of them, and answers the driver.
  /// `userId` is `NamedDriver::userId`; the texts are sent as they stand, empty ones included.
  Operation<NamedDriver> updateNamedDriver(std::int64_t userId, std::string email,
                                           std::string phone) const;
  RequestHandle updateNamedDriver(std::int64_t userId, std::string email, std::string phone,
                                  Completion<NamedDriver> then) const;
};

}  // namespace orvane
