// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of the user resource.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Platform/OneOf.h>
#include <Orvane/Services/User/UserService.h>

#include <set>
#include <string>
#include <utility>

namespace orvane {

/// Reads a user, or writes the current user's profile.
class UserComposer final : public URLComposer {
 public:
  struct Other {
    std::string otherID;
  };
  struct Current {};
  using Update = UserUpdate;
  using RequestType = std::variant<Other, Update, Current>;

  explicit UserComposer(RequestType type, std::set<UserService::Expansion> expanded = {})
      : requestType(std::move(type)), expansions(std::move(expanded)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;
  [[nodiscard]] std::optional<Result<RequestBody>> body() const override;

  RequestType requestType;
  std::set<UserService::Expansion> expansions;
};

/// Writes the current user's address.
class UserAddressComposer final : public URLComposer {
 public:
  using UpdateAddress = UserAddressUpdate;
  using RequestType = UpdateAddress;

  explicit UserAddressComposer(RequestType type, std::optional<std::string> text = {})
      : requestType(std::move(type)), queryText(std::move(text)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override { return queryText; }
  [[nodiscard]] std::optional<Result<RequestBody>> body() const override;

  RequestType requestType;
  std::optional<std::string> queryText;
};

}  // namespace orvane
