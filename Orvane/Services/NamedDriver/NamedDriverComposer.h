// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of the named-driver resource.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Reads the named drivers, or writes one of them. They do not stand below a user.
class NamedDriverComposer final : public URLComposer {
 public:
  struct UpdateNamedDriver {
    std::int64_t userId;
    std::string email;
    std::string phone;
  };
  struct NamedDrivers {};
  using RequestType = std::variant<UpdateNamedDriver, NamedDrivers>;

  explicit NamedDriverComposer(RequestType type) : requestType(std::move(type)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  RequestType requestType;
};

}  // namespace orvane
