// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request that activates an enrolment.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// What an enrolment is activated with.
struct Activation {
  std::string activationID;
  std::string activationCode;
  std::string email;
  std::optional<std::string> accountID;
  std::string displayName;
  std::string deviceID;
};

/// Activates an enrolment: everything travels in the query.
class ActivationComposer final : public URLComposer {
 public:
  explicit ActivationComposer(Activation with) : activation(std::move(with)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  const Activation activation;
};

}  // namespace orvane
