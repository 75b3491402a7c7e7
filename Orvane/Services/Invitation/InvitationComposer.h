// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of the invitation resource.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Services/Invitation/InvitationService.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Lists, sends, answers and deletes invitations.
class InvitationComposer final : public URLComposer {
 public:
  /// What a person is invited to.
  enum class InvitationType : std::uint8_t { vehicle, account, leaderboard };

  struct FetchInvitations {
    InvitationType invitationType;
  };
  using SendInvitation = NewInvitation;
  struct DeleteInvitation {
    std::string userId;
    /// Goes nowhere: the backend deletes by user and vehicle, or account.
    std::optional<std::string> invatationId{};
    std::optional<std::string> vehicleId{};
    std::optional<std::string> accountID{};
  };
  using RespondToInvitation = InvitationReply;
  using RequestType =
      std::variant<FetchInvitations, SendInvitation, DeleteInvitation, RespondToInvitation>;

  // Two of them, since GCC 14 takes the destruction of an absent filter, as a default argument, for
  // that of a text.
  explicit InvitationComposer(RequestType type) : requestType(std::move(type)) {}
  InvitationComposer(RequestType type, std::optional<std::string> filter)
      : requestType(std::move(type)), filtered(std::move(filter)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;
  [[nodiscard]] std::optional<Result<RequestBody>> body() const override;

  RequestType requestType;
  /// Narrows a list of invitations.
  std::optional<std::string> filtered{};
};

template <>
struct EnumerationTable<InvitationComposer::InvitationType> {
  using enum InvitationComposer::InvitationType;
  static constexpr EnumerationCase<InvitationComposer::InvitationType> cases[] = {
      {vehicle, "VEHICLE"}, {account, "ACCOUNT"}, {leaderboard, "LEADERBOARD"}};
};

}  // namespace orvane
